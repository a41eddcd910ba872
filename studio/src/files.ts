// Styles in files, in the browser's memory, and what becomes of them when something else changes them.
import { type Json, Lost, Mistakes, Refused, call } from './server';
import { type State, change, current, isChanged, replace, update, watch } from './store';
import { words } from './words';

interface Opened {
  name: string;
  text: string;
  version: string;
  remembered: string;
}

export const FIRST_STYLE: Json = { text: 'Hello', size: 96 };

const WATCH_MILLISECONDS = 1000;
const REMEMBER_MILLISECONDS = 600;

// A style without what editors alone read.
function readStyle(text: string): Json {
  const { $schema: _, ...style } = JSON.parse(text);
  return style;
}

function memoryKey(): string {
  const { session, name } = current();
  return `gxtext:${session.folder}/${name}`;
}

// What goes wrong is told where it is not the server's absence.
export async function attempt(action: () => Promise<void>) {
  try {
    await action();
  } catch (error) {
    if (error instanceof Lost) update({ isLost: true });
    else if (error instanceof Mistakes) update({ problems: error.problems });
    else if (error instanceof SyntaxError) update({ notice: words.notStyle });
    else if (error instanceof Refused) update({ notice: error.message });
    else throw error;
  }
}

// Whether what is not saved may go.
export function mayLeave(): boolean {
  return !isChanged() || confirm(words.discardStyle);
}

export async function openStyle(name: string) {
  const opened = await call<Opened>('open', { name });
  const saved = readStyle(opened.text);
  replace({ style: saved, saved, name, version: opened.version, notice: '' });
  restore(opened.remembered);
}

export function beginAnew() {
  replace({ style: FIRST_STYLE, saved: FIRST_STYLE, name: '', version: '', notice: '', comparison: undefined });
}

// Without a file.
export function openText(text: string) {
  const style = readStyle(text);
  replace({ style, saved: {}, name: '', version: '', notice: '' });
}

// What the browser has, or what lies beside the file after a crash of both.
export function restore(beside: string) {
  const kept = localStorage.getItem(memoryKey()) ?? beside;
  if (!kept) return;
  const style = JSON.parse(kept) as Json;
  if (JSON.stringify(style) === JSON.stringify(current().saved)) return;
  change(style, '', { notice: words.recovered, canDiscard: true });
}

export function discard() {
  change(current().saved, '', { notice: '', canDiscard: false });
}

let isSaving = false;
let lastSave = Promise.resolve();

// Over `version` of the file, and no other; by itself that which the page knows. One after the other.
export function saveStyle(name: string, version?: string): Promise<void> {
  const save = lastSave.then(() => writeStyle(name, version ?? (name === current().name ? current().version : '')));
  lastSave = save.catch(() => {});
  return save;
}

async function writeStyle(name: string, version: string) {
  const { style } = current();
  isSaving = true;
  try {
    const saved = await call<Opened>('save', { name, style, version });
    localStorage.removeItem(memoryKey());
    update({ name, version: saved.version, saved: style, notice: words.saved(name), conflict: undefined, canDiscard: false });
  } catch (error) {
    if (!(error instanceof Refused && error.isConflict)) throw error;
    const found = await call<{ version: string }>('watch', { name });
    update({ conflict: { name, version: found.version } });
  } finally {
    isSaving = false;
  }
}

export async function keepMine() {
  const { conflict } = current();
  if (conflict) await saveStyle(conflict.name, conflict.version);
}

export async function loadTheirs() {
  const { conflict, name, style } = current();
  if (conflict && conflict.name !== name) return openStyle(conflict.name);
  const opened = await call<Opened>('open', { name });
  // Edited meanwhile, it is asked about at the next look.
  if (current().style !== style) return;
  const saved = readStyle(opened.text);
  // A step that can be undone.
  change(saved, '', { saved, version: opened.version, notice: words.reloaded(name), conflict: undefined });
}

export function forgetConflict() {
  update({ conflict: undefined });
}

// Tells this page from others, and from itself when it was left and is come back to.
let page = crypto.randomUUID();

async function look() {
  const { name, version, isLost } = current();
  const found = await call<{ version: string; styles: string[] }>('watch', { name, page });
  const changes: Partial<State> = {};
  if (isLost) changes.isLost = false;
  if (JSON.stringify(found.styles) !== JSON.stringify(current().styles)) changes.styles = found.styles;
  if (Object.keys(changes).length > 0) update(changes);
  // What the page itself is writing is no change.
  if (isSaving || !name || name !== current().name || version !== current().version || found.version === version) return;
  if (!found.version || found.version === current().conflict?.version) return;
  if (isChanged()) update({ conflict: { name, version: found.version } });
  else await loadTheirs();
}

export function startWatching() {
  const again = async () => {
    await attempt(look);
    setTimeout(again, WATCH_MILLISECONDS);
  };
  void again();
  addEventListener('pageshow', () => {
    page = crypto.randomUUID();
  });
  addEventListener('pagehide', () => {
    void fetch('close', { method: 'POST', body: JSON.stringify({ page }), keepalive: true, headers: { 'Content-Type': 'application/json' } });
  });
}

// In the browser at once, beside the file a little later.
export function startRemembering() {
  let known: unknown[] = [];
  let timer = 0;
  const remember = () => {
    const { style, saved, name } = current();
    // What was edited while it was saved is not yet in the file.
    if (style === known[0] && saved === known[1] && name === known[2]) return;
    known = [style, saved, name];
    const text = isChanged() ? JSON.stringify(style) : '';
    if (text) localStorage.setItem(memoryKey(), text);
    else localStorage.removeItem(memoryKey());
    if (!name) return;
    clearTimeout(timer);
    timer = setTimeout(() => void attempt(async () => void (await call('remember', { name, text }))), REMEMBER_MILLISECONDS);
  };
  watch(remember);
  remember();
}
