// What is asked and given in a window of its own.
import { useState } from 'preact/hooks';
import { DropZone } from './controls';
import { Dialog, type DialogProps } from './dialog';
import { ExportDialog } from './export';
import { attempt, forgetConflict, keepMine, loadTheirs, mayLeave, openStyle, openText, saveStyle } from './files';
import { ImportDialog } from './import';
import { type Conflict, current, useStore } from './store';
import { words } from './words';

export type DialogName = '' | 'open' | 'save' | 'import' | 'export';

// `dropped` is a file to import.
export function Dialogs({ name, dropped, close }: { name: DialogName; dropped?: File } & DialogProps) {
  const { conflict } = useStore();
  if (conflict) return <ConflictDialog conflict={conflict} />;
  if (name === 'open') return <OpenDialog close={close} />;
  if (name === 'save') return <SaveDialog close={close} />;
  if (name === 'import') return <ImportDialog close={close} dropped={dropped} />;
  if (name === 'export') return <ExportDialog close={close} />;
  return null;
}

// A file changed beneath the page, which has to be settled; or it is in the way of another name, which has not.
function ConflictDialog({ conflict }: { conflict: Conflict }) {
  const isOwn = conflict.name === current().name;
  return (
    <Dialog title={isOwn ? words.changed(conflict.name) : words.exists(conflict.name)} close={isOwn ? undefined : forgetConflict}>
      <div class="actions">
        <button type="button" onClick={() => void attempt(loadTheirs)}>
          {words.loadTheirs}
        </button>
        <button type="button" onClick={() => void attempt(keepMine)}>
          {isOwn ? words.keepMine : words.replaceIt}
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
      {styles.length === 0 && <p class="hint">{words.openNone}</p>}
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
        <button type="submit" class="main">{words.save}</button>
      </form>
    </Dialog>
  );
}
