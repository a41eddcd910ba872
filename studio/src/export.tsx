// Pictures, files and code to take away.
import { useEffect, useState } from 'preact/hooks';
import { codeFor } from './code';
import { Dialog, type DialogProps } from './dialog';
import { ask, drawFile } from './server';
import { useStore } from './store';
import { words } from './words';

const SCALES = [1, 2, 3];
const FORMATS = { png: 'PNG', webp: 'WebP' } as const;
type Format = keyof typeof FORMATS;

function download(name: string, blob: Blob) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

export function ExportDialog({ close }: DialogProps) {
  const { style, name } = useStore();
  const [text, setText] = useState(''); // canonical
  const [mistake, setMistake] = useState('');
  const title = (name || 'title.json').replace(/\.json$/, '');
  const attempt = async (action: () => Promise<void>) => {
    try {
      await action();
      setMistake('');
    } catch (error) {
      setMistake((error as Error).message || words.lost);
    }
  };
  useEffect(() => {
    void attempt(async () => setText((await ask<{ text: string }>('check', { style, name })).text));
  }, [style]);
  const savePicture = (format: Format, scale: number) =>
    attempt(async () => download(`${title}${scale === 1 ? '' : `@${scale}x`}.${format}`, await drawFile({ style, name, scale }, format)));
  return (
    <Dialog title={words.exportTitle} close={close}>
      {mistake && (
        <p class="mistake" role="alert">
          {mistake}
        </p>
      )}
      <h3>{words.exportPicture}</h3>
      <div class="actions">
        {(Object.keys(FORMATS) as Format[]).map((format) => (
          <span class="joined">
            {SCALES.map((scale) => (
              <button type="button" onClick={() => void savePicture(format, scale)}>
                {FORMATS[format]} {scale}×
              </button>
            ))}
          </span>
        ))}
        <button type="button" disabled={!text} onClick={() => download(`${title}.json`, new Blob([text], { type: 'application/json' }))}>
          JSON
        </button>
      </div>
      <Code text={text} attempt={attempt} />
    </Dialog>
  );
}

function Code({ text, attempt }: { text: string; attempt(action: () => Promise<void>): Promise<void> }) {
  const [kind, setKind] = useState('json');
  const [copied, setCopied] = useState(''); // code that was
  const code = text && codeFor(kind, text);
  const copy = async () => {
    await navigator.clipboard.writeText(code);
    setCopied(code);
  };
  return (
    <>
      <h3>{words.code}</h3>
      <div class="actions" role="group" aria-label={words.code}>
        {Object.entries(words.codeKinds).map(([item, name]) => (
          <button type="button" aria-pressed={kind === item} onClick={() => setKind(item)}>
            {name}
          </button>
        ))}
      </div>
      <textarea class="code" aria-label={words.code} readOnly rows={14} spellcheck={false} value={code} />
      <button type="button" class="main" disabled={!text} onClick={() => void attempt(copy)}>
        {words.copy}
      </button>{' '}
      <span role="status">{copied !== '' && copied === code && words.copied}</span>
    </>
  );
}
