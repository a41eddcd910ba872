// What is asked and given in a window of its own.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef, useState } from 'preact/hooks';
import { codeFor } from './code';
import { DropZone } from './controls';
import { attempt, beginWith, keepMine, loadTheirs, mayLeave, openStyle, openText, saveStyle } from './files';
import { type Json, ask, drawFile } from './server';
import { current, useStore } from './store';
import { label, words } from './words';

export type DialogName = '' | 'open' | 'save' | 'import' | 'export';

interface DialogProps {
  close(): void;
}

export function Dialogs({ name, close }: { name: DialogName } & DialogProps) {
  const { conflict } = useStore();
  if (conflict) return <ConflictDialog />;
  if (name === 'open') return <OpenDialog close={close} />;
  if (name === 'save') return <SaveDialog close={close} />;
  if (name === 'import') return <ImportDialog close={close} />;
  if (name === 'export') return <ExportDialog close={close} />;
  return null;
}

function Dialog({ title, close, children }: { title: string; children: ComponentChildren } & Partial<DialogProps>) {
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => dialog.current?.showModal(), []);
  return (
    <dialog ref={dialog} aria-labelledby="dialog-title" onClose={() => close?.()} onCancel={(event) => !close && event.preventDefault()}>
      <h2 id="dialog-title">{title}</h2>
      {children}
      {close && (
        <button type="button" class="close" onClick={() => close()}>
          {words.close}
        </button>
      )}
    </dialog>
  );
}

function ConflictDialog() {
  const { name } = useStore();
  return (
    <Dialog title={words.changed(name)}>
      <div class="actions">
        <button type="button" onClick={() => void attempt(loadTheirs)}>
          {words.loadTheirs}
        </button>
        <button type="button" onClick={() => void attempt(keepMine)}>
          {words.keepMine}
        </button>
      </div>
    </Dialog>
  );
}

function OpenDialog({ close }: DialogProps) {
  const { styles, session } = useStore();
  const go = (action: () => Promise<void>) => {
    if (!mayLeave()) return;
    void attempt(action);
    close();
  };
  return (
    <Dialog title={words.open} close={close}>
      <DropZone name={words.openFile} text={words.openFile} accept=".json" onFile={(file) => go(async () => openText(await file.text()))} />
      <h3>{words.openHere(session.folder)}</h3>
      <ul class="files">
        {styles.map((name) => (
          <li>
            <button type="button" onClick={() => go(() => openStyle(name))}>
              {name}
            </button>
          </li>
        ))}
      </ul>
    </Dialog>
  );
}

function SaveDialog({ close }: DialogProps) {
  const [name, setName] = useState(current().name || 'style.json');
  const save = (event: Event) => {
    event.preventDefault();
    void attempt(() => saveStyle(name.endsWith('.json') ? name : `${name}.json`));
    close();
  };
  return (
    <Dialog title={words.saveAs} close={close}>
      <form onSubmit={save}>
        <label>
          {words.saveName}
          <input type="text" autofocus value={name} onInput={(event) => setName(event.currentTarget.value)} />
        </label>
        <p class="hint">{words.openHere(current().session.folder)}</p>
        <button type="submit">{words.save}</button>
      </form>
    </Dialog>
  );
}

interface Imported {
  style: Json;
  losses: { path: string; kind: string; reason: string }[];
}

function ImportDialog({ close }: DialogProps) {
  const [imported, setImported] = useState<Imported>();
  const [mistake, setMistake] = useState('');
  const read = async (file: File) => {
    try {
      setImported(await ask<Imported>('import', { text: await file.text() }));
      setMistake('');
    } catch (error) {
      setMistake((error as Error).message);
    }
  };
  const use = (style: Json) => {
    const { text, font, size } = current().style;
    beginWith({ text, font, size, ...style });
    close();
  };
  return (
    <Dialog title={words.importTitle} close={close}>
      <DropZone name={words.importHelp} text={words.importHelp} accept=".json" onFile={(file) => void read(file)} />
      {mistake && (
        <p class="mistake" role="alert">
          {mistake}
        </p>
      )}
      {imported && (
        <>
          <h3>{words.importLosses}</h3>
          {imported.losses.length === 0 && <p>{words.importNoLosses}</p>}
          <ul class="losses" tabIndex={0}>
            {imported.losses.map((loss) => (
              <li>
                <b>{loss.path}</b> {label(loss.kind)}: {loss.reason}
              </li>
            ))}
          </ul>
          <button type="button" onClick={() => use(imported.style)}>
            {words.importUse}
          </button>
        </>
      )}
    </Dialog>
  );
}

function download(name: string, blob: Blob) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

const SCALES = [1, 2, 3];
const FORMATS = ['png', 'webp'] as const;

function ExportDialog({ close }: DialogProps) {
  const { style, name } = useStore();
  const [text, setText] = useState('');
  const [kind, setKind] = useState('json');
  const [copied, setCopied] = useState(false);
  const [mistake, setMistake] = useState('');
  const title = (name || 'title.json').replace(/\.json$/, '');
  const guarded = async (action: () => Promise<void>) => {
    try {
      await action();
    } catch (error) {
      setMistake((error as Error).message);
    }
  };
  useEffect(() => {
    void guarded(async () => setText((await ask<{ text: string }>('check', { style, name })).text));
  }, [style]);
  const code = text && codeFor(kind, text);
  const save = (format: 'png' | 'webp', scale: number) =>
    guarded(async () => download(`${title}${scale === 1 ? '' : `@${scale}x`}.${format}`, await drawFile({ style, name, scale }, format)));
  const copy = () =>
    guarded(async () => {
      await navigator.clipboard.writeText(code);
      setCopied(true);
    });
  return (
    <Dialog title={words.exportTitle} close={close}>
      {mistake && (
        <p class="mistake" role="alert">
          {mistake}
        </p>
      )}
      <h3>{words.exportPicture}</h3>
      <div class="actions">
        {FORMATS.map((format) =>
          SCALES.map((scale) => (
            <button type="button" onClick={() => void save(format, scale)}>
              {format === 'png' ? 'PNG' : 'WebP'} {scale}×
            </button>
          )),
        )}
        <button type="button" onClick={() => download(`${title}.json`, new Blob([text], { type: 'application/json' }))}>
          JSON
        </button>
      </div>
      <h3>{words.code}</h3>
      <div class="actions" role="group" aria-label={words.code}>
        {Object.entries(words.codeKinds).map(([item, text]) => (
          <button
            type="button"
            aria-pressed={kind === item}
            onClick={() => {
              setKind(item);
              setCopied(false);
            }}
          >
            {text}
          </button>
        ))}
      </div>
      <textarea class="code" aria-label={words.code} readOnly rows={14} spellcheck={false} value={code} />
      <button type="button" onClick={() => void copy()}>
        {copied ? words.copied : words.copy}
      </button>
    </Dialog>
  );
}
