// The text, its font, and styles to begin with.
import { useEffect, useRef, useState } from 'preact/hooks';
import { DropZone, Fields, dropInto } from './controls';
import { moveFocus } from './menu';
import type { Field } from './schema';
import type { Axis, Json } from './server';
import { TOPMOST, change, current, setValue, useStore } from './store';
import { Thumbnail, useThumbnails } from './thumbnails';
import { label, words } from './words';

// What has a place of its own on the page.
const ELSEWHERE = ['text', 'font', 'effects', '$schema'];
const MOST_FAMILIES = 80;
// What stays the user's when a preset takes over.
const OWN = ['text', 'font', 'fontIndex', 'fontVariations', 'locale', 'width', 'align'];

const COLLECTION = /\.(ttc|otc)$/i;

const TABS = { presets: words.presets, settings: words.settings };
type Tab = keyof typeof TABS;

export function TextPanel() {
  const { style, schema, problems, session } = useStore();
  const [tab, setTab] = useState<Tab>(session.file ? 'settings' : 'presets');
  // Which font of a file is a question only where a file may have several.
  const hasPlace = (field: Field) => !ELSEWHERE.includes(field.name) && (field.name !== 'fontIndex' || COLLECTION.test(String(style.font)));
  const mistakes = problems.filter((problem) => problem.path === '$.text');
  return (
    <section class="panel text" aria-labelledby="text-title">
      <h2 id="text-title">{words.text}</h2>
      <textarea
        aria-label={words.textField}
        rows={2}
        dir="auto"
        value={(style.text as string | undefined) ?? ''}
        onInput={(event) => setValue(['text'], event.currentTarget.value || undefined)}
      />
      {mistakes.map((problem) => (
        <p class="mistake" role="alert">
          {problem.reason}
        </p>
      ))}
      <FontChoice />
      <Variations />
      <div class="tabs" role="tablist" aria-label={words.text}>
        {(Object.keys(TABS) as Tab[]).map((item) => (
          <button
            type="button"
            role="tab"
            id={`tab-${item}`}
            aria-selected={tab === item}
            aria-controls="tab-panel"
            tabIndex={tab === item ? 0 : -1}
            onClick={() => setTab(item)}
            onKeyDown={(event) => {
              if (event.key !== 'ArrowLeft' && event.key !== 'ArrowRight') return;
              const other = item === 'presets' ? 'settings' : 'presets';
              setTab(other);
              document.getElementById(`tab-${other}`)?.focus();
            }}
          >
            {TABS[item]}
          </button>
        ))}
      </div>
      <div id="tab-panel" role="tabpanel" aria-labelledby={`tab-${tab}`}>
        {tab === 'presets' ? <Presets /> : <Fields fields={schema.style.filter(hasPlace)} path={[]} />}
      </div>
    </section>
  );
}

function FontChoice() {
  const { style, session, problems } = useStore();
  const [typed, setTyped] = useState<string>();
  const [active, setActive] = useState(0);
  const list = useRef<HTMLUListElement>(null);
  const font = (style.font as string | undefined) ?? '';
  const isOpen = typed !== undefined;
  // The system's own, which has no name, heads the list of all.
  const all = typed === '' ? ['', ...session.families] : session.families;
  const found = isOpen ? all.filter((family) => family.toLowerCase().includes(typed.toLowerCase())).slice(0, MOST_FAMILIES) : [];
  const choose = (family: string) => {
    change({ ...current().style, font: family || undefined, fontIndex: undefined, fontVariations: undefined });
    setTyped(undefined);
  };
  useEffect(() => list.current?.children[active]?.scrollIntoView({ block: 'nearest' }), [active]);
  const search = (text: string) => {
    setTyped(text);
    setActive(0);
  };
  const keys = (event: KeyboardEvent) => {
    if (event.key === 'ArrowDown' && !isOpen) search('');
    else if (event.key === 'ArrowDown') setActive(Math.min(active + 1, found.length - 1));
    else if (event.key === 'ArrowUp') setActive(Math.max(active - 1, 0));
    else if (event.key === 'Enter' && found[active] !== undefined) choose(found[active]);
    else if (event.key === 'Escape') setTyped(undefined);
    else return;
    event.preventDefault();
  };
  return (
    <div class="font">
      <label>
        <span class="name">{words.font}</span>
        <input
          type="text"
          role="combobox"
          aria-label={words.fontSearch}
          aria-expanded={isOpen}
          aria-controls="families"
          aria-autocomplete="list"
          aria-activedescendant={isOpen && found.length > 0 ? `family-${active}` : undefined}
          spellcheck={false}
          placeholder={font || words.fontDefault}
          value={typed ?? font}
          onFocus={(event) => event.currentTarget.select()}
          onClick={() => !isOpen && search('')}
          onInput={(event) => search(event.currentTarget.value)}
          onKeyDown={keys}
          onBlur={() => setTyped(undefined)}
        />
      </label>
      <ul id="families" role="listbox" aria-label={words.font} ref={list} hidden={found.length === 0}>
        {found.map((family, index) => (
          <li
            id={`family-${index}`}
            role="option"
            aria-selected={index === active}
            style={{ fontFamily: family ? `"${family.replaceAll('"', '')}"` : 'sans-serif' }}
            onPointerDown={(event) => {
              event.preventDefault();
              choose(family);
            }}
          >
            {family || words.fontDefault}
          </li>
        ))}
      </ul>
      {problems
        .filter((problem) => problem.path === '$.font')
        .map((problem) => (
          <p class="mistake" role="alert">
            {problem.reason}
          </p>
        ))}
      <DropZone name={words.fontDrop} text={words.fontDrop} accept=".ttf,.otf,.ttc,.otc" onFile={(file) => void dropInto(['font'], file, 'font')} />
    </div>
  );
}

// "'wght' 650, 'wdth' 80"
function readAxes(text: string): Map<string, number> {
  return new Map([...text.matchAll(/'?(\w{4})'?\s+(-?[\d.]+)/g)].map(([, tag, value]) => [tag, Number(value)]));
}

function Variations() {
  const { drawn, style } = useStore();
  const axes = drawn?.axes ?? [];
  if (axes.length === 0) return null;
  const set = readAxes((style.fontVariations as string | undefined) ?? '');
  const write = (tag: string, value: number | undefined) => {
    const values = new Map(set);
    if (value === undefined) values.delete(tag);
    else values.set(tag, value);
    setValue(['fontVariations'], [...values].map(([axis, at]) => `'${axis}' ${at}`).join(', ') || undefined);
  };
  return (
    <div class="variations" role="group" aria-label={words.variations}>
      {axes.map((axis) => (
        <AxisSlider key={axis.tag} axis={axis} value={set.get(axis.tag) ?? axis.initial} set={(value) => write(axis.tag, value)} />
      ))}
    </div>
  );
}

function AxisSlider({ axis, value, set }: { axis: Axis; value: number; set(value: number | undefined): void }) {
  const name = words.names[axis.tag] ?? axis.tag;
  return (
    <div class="field">
      <span class="name" title={`${axis.tag}. ${words.toDefault}`} onDblClick={() => set(undefined)}>
        {name}
      </span>
      <div class="control">
        <input
          type="range"
          aria-label={name}
          min={axis.min}
          max={axis.max}
          step={axis.max - axis.min > 20 ? 1 : 0.01}
          value={value}
          onInput={(event) => set(event.currentTarget.valueAsNumber)}
          onDblClick={() => set(undefined)}
        />
        <output>{value}</output>
      </div>
    </div>
  );
}

// The preset with what stays the user's.
function dressed(preset: Json): Json {
  const { style } = current();
  const kept = Object.fromEntries(OWN.filter((name) => style[name] !== undefined).map((name) => [name, style[name]]));
  const { $schema: _, ...own } = preset;
  for (const name of OWN) delete own[name];
  // Patterns of presets go by their plain names.
  const plain = JSON.parse(JSON.stringify(own).replaceAll('"../patterns/', '"'));
  return { ...kept, ...plain };
}

function Presets() {
  const { session, style } = useStore();
  const styles = session.presets.map((preset) => dressed(preset.style));
  const [active, setActive] = useState(0);
  const [pictures, isDrawn] = useThumbnails(styles, JSON.stringify(OWN.map((name) => style[name])));
  const begin = (style: Json) => change(style, '', { selected: TOPMOST });
  return (
    <div class="presets" aria-busy={!isDrawn} onKeyDown={moveFocus}>
      {session.presets.map(({ name }, index) => {
        const title = name.replace('.json', '').replaceAll('-', ' ');
        return (
          <button type="button" class="preset" aria-label={words.presetUse(title)} title={title} tabIndex={index === active ? 0 : -1} onFocus={() => setActive(index)} onClick={() => begin(styles[index])}>
            <Thumbnail drawn={pictures[index]} />
            <span class="caption" aria-hidden="true">
              {label(title)}
            </span>
          </button>
        );
      })}
    </div>
  );
}
