// The effects as layers, the topmost first.
import { useState } from 'preact/hooks';
import { Fields } from './controls';
import type { Json } from './server';
import { change, current, effectsOf, pathText, setValue, update, useStore } from './store';
import { label, words } from './words';

// Indices into the style's list, the topmost first, as the renderer stacks them.
function shownOrder(): number[] {
  const { style, drawn } = current();
  const effects = effectsOf(style);
  const stacking = drawn?.stacking;
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
      <select
        class="add"
        aria-label={words.add}
        value=""
        onChange={(event) => {
          add(event.currentTarget.value);
          event.currentTarget.value = '';
        }}
      >
        <option value="">{words.add} …</option>
        {schema.effects.map((item) => (
          <option value={item.type} title={item.meaning}>
            {label(item.type)}
          </option>
        ))}
      </select>
      {effects.length === 0 && <p class="hint">{words.noLayers}</p>}
      <LayerList order={order} />
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

function LayerList({ order }: { order: number[] }) {
  const { style, selected, problems } = useStore();
  const [dragged, setDragged] = useState(-1);
  const [over, setOver] = useState(-1);
  const effects = effectsOf(style);
  const choose = (place: number) => {
    if (place < 0 || place >= order.length) return;
    update({ selected: order[place] });
    requestAnimationFrame(() => document.querySelector<HTMLElement>('.layer.selected .title')?.focus());
  };
  const keys = (event: KeyboardEvent, place: number) => {
    const index = order[place];
    const by = { ArrowUp: -1, ArrowDown: 1 }[event.key];
    const isControl = event.ctrlKey || event.metaKey;
    if (by && event.altKey) move(place, place + by);
    else if (by) choose(place + by);
    else if (event.key === ' ') toggle(index);
    else if (event.key === 'Delete') remove(index);
    else if (isControl && event.key === 'd') duplicate(index);
    else return;
    event.preventDefault();
    requestAnimationFrame(() => document.querySelector<HTMLElement>('.layer.selected .title')?.focus());
  };
  return (
    <ol class="list" title={words.layerHelp}>
      {order.map((index, place) => {
        const effect = effects[index];
        const name = label(String(effect.type));
        const isWrong = problems.some((problem) => problem.path.startsWith(pathText(['effects', index])));
        const classes = ['layer', index === selected && 'selected', place === over && dragged >= 0 && 'over', isWrong && 'wrong'];
        return (
          <li
            key={index}
            class={classes.filter(Boolean).join(' ')}
            draggable
            onDragStart={(event) => {
              event.dataTransfer?.setData('text/plain', name);
              setDragged(place);
            }}
            onDragOver={(event) => {
              if (dragged < 0) return;
              event.preventDefault();
              setOver(place);
            }}
            onDragEnd={() => setDragged(-1)}
            onDrop={(event) => {
              event.preventDefault();
              if (dragged >= 0) move(dragged, place);
              setDragged(-1);
              setOver(-1);
            }}
          >
            <input type="checkbox" class="eye" aria-label={words.show(name)} checked={effect.enabled !== false} onChange={() => toggle(index)} />
            <button
              type="button"
              class="title"
              aria-current={index === selected}
              aria-keyshortcuts="Alt+ArrowUp Alt+ArrowDown Space Delete Control+D"
              onClick={() => update({ selected: index })}
              onKeyDown={(event) => keys(event, place)}
            >
              {name}
            </button>
            <button type="button" class="icon" title={words.moveUp} aria-label={`${words.moveUp}: ${name}`} disabled={place === 0} onClick={() => move(place, place - 1)}>
              ↑
            </button>
            <button type="button" class="icon" title={words.moveDown} aria-label={`${words.moveDown}: ${name}`} disabled={place === order.length - 1} onClick={() => move(place, place + 1)}>
              ↓
            </button>
            <button type="button" class="icon" title={words.duplicate} aria-label={`${words.duplicate}: ${name}`} onClick={() => duplicate(index)}>
              ⧉
            </button>
            <button type="button" class="icon" title={words.remove} aria-label={`${words.remove}: ${name}`} onClick={() => remove(index)}>
              ×
            </button>
          </li>
        );
      })}
    </ol>
  );
}
