// What the page knows: one style with its history, and what is shown of it.
import { useLayoutEffect, useState } from 'preact/hooks';
import { Schema } from './schema';
import { type Drawn, type Json, type Problem, type Session } from './server';

export type Path = (string | number)[];

export interface Comparison {
  style: Json;
  label: string;
}

// A file that is another one than the page knows.
export interface Conflict {
  name: string;
  version: string; // that it has
}

export interface State {
  session: Session;
  schema: Schema;
  style: Json;
  saved: Json; // as the file has it
  name: string; // of the file; empty for none
  version: string;
  selected: number; // index of an effect, or TOPMOST
  drawn?: Drawn;
  problems: Problem[];
  isLost: boolean;
  notice: string;
  canDiscard: boolean; // the notice is about changes found again
  conflict?: Conflict;
  recent: string[]; // colours
  styles: string[]; // names in the folder
  comparison?: Comparison;
  compared?: Drawn;
  density: number; // of the phone; 0 for none
}

// The effect that lies over the others, as soon as a picture says which that is.
export const TOPMOST = -1;

// Changes of one control within this time are one step.
const STEP_MILLISECONDS = 700;
const MOST_RECENT = 12;
const RECENT = 'gxtext:recent';

let state: State;
const watchers = new Set<() => void>();
let past: Json[] = [];
let future: Json[] = [];
let lastStep = { key: '', time: 0 };

export function start(initial: State) {
  state = initial;
}

export function current(): State {
  return state;
}

export function update(change: Partial<State>) {
  state = { ...state, ...change };
  for (const watcher of [...watchers]) watcher();
}

export function watch(watcher: () => void): () => void {
  watchers.add(watcher);
  return () => watchers.delete(watcher);
}

export function useStore(): State {
  const [, redraw] = useState(0);
  // At once: what changes before the first frame is seen, too.
  useLayoutEffect(() => watch(() => redraw((count) => count + 1)) as () => void, []);
  return state;
}

// A colour alone stands for a record that has no more.
function recordOf(value: unknown): Json {
  return typeof value === 'string' ? { color: value } : ((value ?? {}) as Json);
}

// A copy with one value; undefined takes it away.
export function withValue<T>(whole: T, path: Path, value: unknown): T {
  if (path.length === 0) return value as T;
  const [key, ...rest] = path;
  if (Array.isArray(whole)) {
    const list = [...whole];
    list[key as number] = withValue(list[key as number], rest, value);
    return list as T;
  }
  const object = { ...recordOf(whole) };
  const inner = withValue(object[key], rest, value);
  if (inner === undefined) delete object[key];
  else object[key] = inner;
  return object as T;
}

export function valueAt(whole: unknown, path: Path): unknown {
  return path.reduce<unknown>((value, key) => recordOf(value)[key as string], whole);
}

// "$.effects[0].size", as mistakes are told.
export function pathText(path: Path): string {
  return path.reduce<string>((text, key) => text + (typeof key === 'number' ? `[${key}]` : `.${key}`), '$');
}

export function isChanged(): boolean {
  return state.style !== state.saved && JSON.stringify(state.style) !== JSON.stringify(state.saved);
}

// `key` names the control; an empty one makes a step of its own.
export function change(style: Json, key = '', more: Partial<State> = {}) {
  const time = performance.now();
  const continues = key !== '' && key === lastStep.key && time - lastStep.time < STEP_MILLISECONDS;
  if (!continues) past.push(state.style);
  lastStep = { key, time };
  future = [];
  update({ style, ...more });
}

export function setValue(path: Path, value: unknown) {
  change(withValue(state.style, path, value), pathText(path));
}

export function undo() {
  step(past, future);
}

export function redo() {
  step(future, past);
}

export function canUndo(): boolean {
  return past.length > 0;
}

export function canRedo(): boolean {
  return future.length > 0;
}

function step(from: Json[], to: Json[]) {
  const style = from.pop();
  if (!style) return;
  to.push(state.style);
  lastStep = { key: '', time: 0 };
  update({ style, selected: Math.min(state.selected, effectsOf(style).length - 1) });
}

// Another style, without a way back.
export function replace(change: Partial<State>) {
  past = [];
  future = [];
  update({ selected: TOPMOST, problems: [], conflict: undefined, canDiscard: false, ...change });
}

export function useColor(color: string) {
  const others = state.recent.filter((other) => other !== color);
  const recent = [color, ...others].slice(0, MOST_RECENT);
  localStorage.setItem(RECENT, JSON.stringify(recent));
  update({ recent });
}

export function recentColors(): string[] {
  return JSON.parse(localStorage.getItem(RECENT) ?? '[]');
}

export function effectsOf(style: Json): Json[] {
  return (style.effects as Json[] | undefined) ?? [];
}
