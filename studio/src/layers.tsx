// The effects as layers, the topmost first.
import { useState } from 'preact/hooks';
import { Fields } from './controls';
import { Icon, type IconName } from './icons';
import { Menu } from './menu';
import type { Json } from './server';
import { change, current, effectsOf, pathText, setValue, update, useStore } from './store';
import { label, words } from './words';

// Indices into the style's list, the topmost first, as the renderer stacks them.
function shownOrder(): number[] {
  const { style, drawn } = current();
  const effects = effectsOf(style);
  // Once listed, a picture from before would have them elsewhere.
  const stacking = style.order === 'listed' ? undefined : drawn?.stacking;
  const order = stacking?.length === effects.length ? stacking : effects.map((_, index) => index);
  return [...order].reverse();
}

function setEffects(effects: Json[], selected: number, more: Json = {}) {
  const { style } = current();
  change({ ...style, ...more, effects: effects.length > 0 ? effects : undefined }, '', { selected });
}

// What is moved lies where it was put: each layer over those listed before it.
function move(from: number, to: number) {
  const order = shownOrder();
  if (to < 0 || to >= order.length || from === to) return;
  const [moved] = order.splice(from, 1);
  order.splice(to, 0, moved);
  const effects = effectsOf(current().style);
  const listed = [...order].reverse();
  setEffects(
    listed.map((index) => effects[index]),
    listed.indexOf(moved),
    { order: 'listed' },
  );
}

function duplicate(index: number) {
  const effects = [...effectsOf(current().style)];
  effects.splice(index + 1, 0, structuredClone(effects[index]));
  setEffects(effects, index + 1);
}

function remove(index: number) {
  const effects = effectsOf(current().style).filter((_, other) => other !== index);
  setEffects(effects, Math.min(index, effects.length - 1));
}

function add(type: string) {
  const effects = [...effectsOf(current().style), current().schema.newEffect(type)];
  setEffects(effects, effects.length - 1);
  focusChosen();
}

function toggle(index: number) {
  const isShown = effectsOf(current().style)[index].enabled !== false;
  setValue(['effects', index, 'enabled'], isShown ? false : undefined);
}

export function Layers() {
  const { style, selected, schema } = useStore();
  const effects = effectsOf(style);
  const order = shownOrder();
  const kind = schema.kind(effects[selected]?.type);
  return (
    <section class="panel layers" aria-labelledby="layers-title">
      <h2 id="layers-title">{words.layers}</h2>
      <Menu text={`+ ${words.add}`} name={words.add} items={schema.effects.map((item) => ({ name: label(item.type), hint: item.meaning, act: () => add(item.type) }))} />
      {effects.length === 0 && <p class="hint">{words.noLayers}</p>}
      <LayerList order={order} />
      {effects.length > 0 && !kind && <p class="hint">{words.noLayerChosen}</p>}
      {kind && (
        <div class="effect" role="group" aria-label={label(kind.type)}>
          <h3>{label(kind.type)}</h3>
          <p class="hint">{kind.meaning}</p>
          <Fields fields={kind.fields.filter((field) => field.name !== 'enabled')} path={['effects', selected]} />
        </div>
      )}
    </section>
  );
}

// After the page is made anew, which is in a microtask, and before the next key.
function focusChosen() {
  queueMicrotask(() => document.querySelector<HTMLElement>('.layer.selected .title')?.focus());
}

function LayerList({ order }: { order: number[] }) {
  const { style, selected, problems } = useStore();
  const [dragged, setDragged] = useState(-1);
  const [over, setOver] = useState(-1);
  if (order.length === 0) return null;
  const end = () => {
    setDragged(-1);
    setOver(-1);
  };
  const drop = (place: number) => {
    if (dragged >= 0) move(dragged, place);
    end();
  };
  const stateOf = (index: number, place: number) => {
    const isWrong = problems.some((problem) => problem.path.startsWith(pathText(['effects', index])));
    const isTarget = place === over && dragged >= 0 && dragged !== place;
    return ['layer', index === selected && 'selected', isTarget && (place < dragged ? 'above' : 'below'), isWrong && 'wrong', effectsOf(style)[index].enabled === false && 'off'];
  };
  return (
    <>
      <ol class="list">
        {order.map((index, place) => (
          <li
            key={index}
            class={stateOf(index, place).filter(Boolean).join(' ')}
            draggable
            onDragStart={(event) => {
              event.dataTransfer?.setData('text/plain', '');
              setDragged(place);
            }}
            onDragOver={(event) => {
              if (dragged < 0) return;
              event.preventDefault();
              setOver(place);
            }}
            onDragEnd={end}
            onDrop={(event) => {
              event.preventDefault();
              drop(place);
            }}
          >
            <LayerRow effect={effectsOf(style)[index]} order={order} place={place} />
          </li>
        ))}
      </ol>
      <p class="hint keys" aria-hidden="true">
        {words.layerHelp}
      </p>
    </>
  );
}

// The keys of a layer's title; whether this was one.
function pressed(event: KeyboardEvent, order: number[], place: number): boolean {
  const by = { ArrowUp: -1, ArrowDown: 1 }[event.key];
  const isControl = event.ctrlKey || event.metaKey;
  if (by && event.altKey) move(place, place + by);
  else if (by) update({ selected: order[place + by] ?? order[place] });
  else if (event.key === ' ') toggle(order[place]);
  else if (event.key === 'Delete') remove(order[place]);
  else if (isControl && event.key === 'd') duplicate(order[place]);
  else return false;
  return true;
}

// What is beside the title is for the pointer: at the keyboard the title's keys do the same, and the list is one stop.
function LayerRow({ effect, order, place }: { effect: Json; order: number[]; place: number }) {
  const { selected } = useStore();
  const index = order[place];
  const name = label(String(effect.type));
  const isShown = effect.enabled !== false;
  const actions: [IconName, string, boolean, () => void][] = [
    ['up', words.moveUp, place > 0, () => move(place, place - 1)],
    ['down', words.moveDown, place < order.length - 1, () => move(place, place + 1)],
    ['duplicate', words.duplicate, true, () => duplicate(index)],
    ['remove', words.remove, true, () => remove(index)],
  ];
  return (
    <>
      <label class="eye" title={words.show(name)}>
        <input type="checkbox" tabIndex={-1} aria-label={words.show(name)} checked={isShown} onChange={() => toggle(index)} />
        <Icon name={isShown ? 'shown' : 'hidden'} />
      </label>
      <button
        type="button"
        class="title"
        tabIndex={index === selected || (place === 0 && !order.includes(selected)) ? 0 : -1}
        aria-current={index === selected}
        aria-keyshortcuts="Alt+ArrowUp Alt+ArrowDown Space Delete Control+D"
        onClick={() => update({ selected: index })}
        onKeyDown={(event) => {
          if (!pressed(event, order, place)) return;
          event.preventDefault();
          focusChosen();
        }}
      >
        {name}
      </button>
      {actions.map(([icon, text, isPossible, act]) => (
        <button type="button" class="action" tabIndex={-1} title={text} aria-label={`${text}: ${name}`} disabled={!isPossible} onClick={act}>
          <Icon name={icon} />
        </button>
      ))}
    </>
  );
}
