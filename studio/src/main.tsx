import { render } from 'preact';
import { useEffect, useState } from 'preact/hooks';
import { dropInto } from './controls';
import { type DialogName, Dialogs } from './dialogs';
import { startDrawing } from './drawing';
import { attempt, discard, mayLeave, openStyle, openText, restore, saveStyle, startRemembering, startWatching } from './files';
import { Layers } from './layers';
import { Schema } from './schema';
import { type Session, call, isLayered } from './server';
import { Stage } from './stage';
import { canRedo, canUndo, current, isChanged, recentColors, redo, start, undo, useStore } from './store';
import { TextPanel } from './text';
import { words } from './words';

const FIRST_TEXT = 'Hello';
const FIRST_SIZE = 96;

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
        <button type="button" onClick={() => setDialog('open')}>
          {words.open}
        </button>
        <button type="button" onClick={save}>
          {words.save}
        </button>
        <button type="button" onClick={() => setDialog('save')}>
          {words.saveAs}
        </button>
        <button type="button" disabled={!canUndo()} onClick={undo}>
          {words.undo}
        </button>
        <button type="button" disabled={!canRedo()} onClick={redo}>
          {words.redo}
        </button>
        <button type="button" onClick={() => setDialog('import')}>
          {words.importEffects}
        </button>
        <button type="button" onClick={() => setDialog('export')}>
          {words.exportIt}
        </button>
      </nav>
    </header>
  );
}

function Notices() {
  const { isLost, notice, canDiscard } = useStore();
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
            {notice}{' '}
            {canDiscard && (
              <button type="button" onClick={discard}>
                {words.discard}
              </button>
            )}
          </p>
        )}
      </div>
    </div>
  );
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
    const stay = (event: DragEvent) => event.preventDefault();
    const take = (event: DragEvent) => {
      const file = event.dataTransfer?.files[0];
      if (event.defaultPrevented || !file) return;
      event.preventDefault();
      if (/\.(ttf|otf|ttc|otc)$/i.test(file.name)) void dropInto(['font'], file, 'font');
      else if (isLayered(file)) importFile(file);
      else if (/\.json$/i.test(file.name) && mayLeave()) void attempt(async () => openText(await file.text()));
    };
    addEventListener('dragover', stay);
    addEventListener('drop', take);
    return () => {
      removeEventListener('dragover', stay);
      removeEventListener('drop', take);
    };
  }, []);
}

async function begin() {
  const session = await call<Session>('session', {});
  const style = { text: FIRST_TEXT, size: FIRST_SIZE };
  start({
    session,
    schema: new Schema(session.schema),
    style,
    saved: style,
    name: '',
    version: '',
    selected: -1,
    problems: [],
    isLost: false,
    notice: '',
    canDiscard: false,
    conflict: '',
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
