import { render } from 'preact';
import { useEffect, useState } from 'preact/hooks';
import { dropInto } from './controls';
import { type DialogName, Dialogs } from './dialogs';
import { startDrawing } from './drawing';
import { FIRST_STYLE, attempt, beginAnew, discard, mayLeave, openStyle, openText, restore, saveStyle, startRemembering, startWatching } from './files';
import { Icon, type IconName } from './icons';
import { Layers } from './layers';
import { Schema } from './schema';
import { type Session, call, isLayered } from './server';
import { Stage } from './stage';
import { TOPMOST, canRedo, canUndo, current, isChanged, recentColors, redo, start, undo, update, useStore } from './store';
import { TextPanel } from './text';
import { words } from './words';

const NOTICE_MILLISECONDS = 6000;

function Page() {
  const [dialog, setDialog] = useState<DialogName>('');
  const [dropped, setDropped] = useState<File>();
  const save = () => {
    const { name } = current();
    if (name) void attempt(() => saveStyle(name));
    else setDialog('save');
  };
  useKeys({ save, open: () => setDialog('open') });
  useDrops((file) => {
    setDropped(file);
    setDialog('import');
  });
  const close = () => {
    setDropped(undefined);
    setDialog('');
  };
  return (
    <>
      <Header setDialog={setDialog} save={save} />
      <Notices />
      <div class="columns">
        <TextPanel />
        <Stage />
        <Layers />
      </div>
      <Dialogs name={dialog} dropped={dropped} close={close} />
    </>
  );
}

function Header({ setDialog, save }: { setDialog(name: DialogName): void; save(): void }) {
  const { name } = useStore();
  const isUnsaved = isChanged();
  useEffect(() => {
    document.title = `${isUnsaved ? '• ' : ''}${name || words.untitled} – ${words.title}`;
  }, [name, isUnsaved]);
  return (
    <header>
      <h1>{words.title}</h1>
      <span class="file-name">
        {name || words.untitled}
        {isUnsaved && <em> {words.unsaved}</em>}
      </span>
      <nav aria-label={words.title}>
        <span class="joined">
          <HeaderButton text={words.undo} keys="Ctrl+Z" icon="undo" disabled={!canUndo()} onClick={undo} />
          <HeaderButton text={words.redo} keys="Ctrl+Y" icon="redo" disabled={!canRedo()} onClick={redo} />
        </span>
        <span class="joined">
          <HeaderButton text={words.begin} onClick={() => mayLeave() && beginAnew()} />
          <HeaderButton text={words.open} keys="Ctrl+O" onClick={() => setDialog('open')} />
          <HeaderButton text={words.importEffects} onClick={() => setDialog('import')} />
        </span>
        <span class="joined">
          <HeaderButton text={words.save} keys="Ctrl+S" isMain={isUnsaved} onClick={save} />
          <HeaderButton text={words.saveAs} onClick={() => setDialog('save')} />
        </span>
        <HeaderButton text={words.exportIt} onClick={() => setDialog('export')} />
      </nav>
    </header>
  );
}

interface HeaderButtonProps {
  text: string;
  keys?: string;
  icon?: IconName; // in the place of the text
  isMain?: boolean;
  disabled?: boolean;
  onClick(): void;
}

function HeaderButton({ text, keys, icon, isMain, disabled, onClick }: HeaderButtonProps) {
  const title = keys ? `${text} (${keys})` : undefined;
  return (
    <button type="button" class={isMain ? 'main' : ''} title={title} aria-label={icon && text} aria-keyshortcuts={keys?.replace('Ctrl', 'Control')} disabled={disabled} onClick={onClick}>
      {icon ? <Icon name={icon} /> : text}
    </button>
  );
}

// Over the page, so that nothing moves when they come and go.
function Notices() {
  const { isLost, notice, canDiscard } = useStore();
  useEffect(() => {
    if (!notice || canDiscard) return;
    const timer = setTimeout(dismiss, NOTICE_MILLISECONDS);
    return () => clearTimeout(timer);
  }, [notice, canDiscard]);
  return (
    <div class="notices">
      {isLost && (
        <p class="lost" role="alert">
          {words.lost}
        </p>
      )}
      <div role="status">
        {notice && (
          <p>
            <span>{notice}</span>
            {canDiscard && (
              <button type="button" onClick={discard}>
                {words.discard}
              </button>
            )}
            <button type="button" onClick={dismiss}>
              {words.dismiss}
            </button>
          </p>
        )}
      </div>
    </div>
  );
}

function dismiss() {
  update({ notice: '', canDiscard: false });
}

function useKeys({ save, open }: { save(): void; open(): void }) {
  useEffect(() => {
    const keys = (event: KeyboardEvent) => {
      if (!event.ctrlKey && !event.metaKey) return;
      const key = event.key.toLowerCase();
      if (key === 'z' && !event.shiftKey) undo();
      else if (key === 'y' || key === 'z') redo();
      else if (key === 's') save();
      else if (key === 'o') open();
      else return;
      event.preventDefault();
    };
    addEventListener('keydown', keys);
    return () => removeEventListener('keydown', keys);
  }, []);
}

// A file that is dropped beside every place for it goes where its kind belongs, and never in the page's place.
function useDrops(importFile: (file: File) => void) {
  useEffect(() => {
    const mark = (isOver: boolean) => document.body.classList.toggle('dropping', isOver);
    const listeners: Record<string, (event: DragEvent) => void> = {
      dragover: (event) => {
        event.preventDefault();
        if (event.dataTransfer?.types.includes('Files')) mark(true);
      },
      dragleave: (event) => event.relatedTarget === null && mark(false),
      drop: (event) => {
        mark(false);
        const file = event.dataTransfer?.files[0];
        if (event.defaultPrevented || !file) return;
        event.preventDefault();
        if (/\.(ttf|otf|ttc|otc)$/i.test(file.name)) void dropInto(['font'], file, 'font');
        else if (isLayered(file)) importFile(file);
        else if (!/\.json$/i.test(file.name)) update({ notice: words.unknownDrop(file.name) });
        else if (mayLeave()) void attempt(async () => openText(await file.text()));
      },
    };
    for (const [name, listener] of Object.entries(listeners)) addEventListener(name, listener as EventListener);
    return () => {
      for (const [name, listener] of Object.entries(listeners)) removeEventListener(name, listener as EventListener);
    };
  }, []);
}

async function begin() {
  const session = await call<Session>('session', {});
  const style = FIRST_STYLE;
  start({
    session,
    schema: new Schema(session.schema),
    style,
    saved: style,
    name: '',
    version: '',
    selected: TOPMOST,
    problems: [],
    isLost: false,
    notice: '',
    canDiscard: false,
    recent: recentColors(),
    styles: [],
    density: 0,
  });
  if (session.file) await attempt(() => openStyle(session.file));
  else restore('');
  render(<Page />, document.getElementById('page') as HTMLElement);
  startDrawing();
  startRemembering();
  startWatching();
}

void begin();
