// Texts and effects out of other programs' files.
import { useEffect, useState } from 'preact/hooks';
import { DropZone } from './controls';
import { Dialog, type DialogProps } from './dialog';
import { type Layer, Lost, readLayers } from './server';
import { TOPMOST, change, current } from './store';
import { Thumbnail, useThumbnails } from './thumbnails';
import { label, words } from './words';

// What the layer says goes over what there is; a step that can be undone.
function take(layer: Layer) {
  const { text, font, size } = current().style;
  change({ text, font, size, ...layer.style }, '', { selected: TOPMOST });
}

export function ImportDialog({ close, dropped }: DialogProps & { dropped?: File }) {
  const [layers, setLayers] = useState<Layer[]>();
  const [chosen, setChosen] = useState(0);
  const [isReading, setReading] = useState(false);
  const [mistake, setMistake] = useState('');
  const read = async (file: File) => {
    setReading(true);
    setMistake('');
    setLayers(undefined);
    setChosen(0);
    try {
      setLayers(await readLayers(file, current().session.maxFile));
    } catch (error) {
      setMistake(error instanceof Lost ? words.lost : `${file.name}: ${(error as Error).message}`);
    }
    setReading(false);
  };
  useEffect(() => {
    if (dropped) void read(dropped);
  }, [dropped]);
  const layer = layers?.[chosen];
  return (
    <Dialog title={words.importTitle} close={close}>
      <DropZone name={words.importHelp} text={words.importHelp} accept=".psd,.psb,.json" onFile={(file) => void read(file)} />
      <div role="status">
        {isReading && <p class="hint">{words.importReading}</p>}
        {layers?.length === 0 && <p>{words.importNoTexts}</p>}
      </div>
      {mistake && (
        <p class="mistake" role="alert">
          {mistake}
        </p>
      )}
      {layers && layers.length > 1 && <LayerChoice layers={layers} chosen={chosen} choose={setChosen} />}
      {layer && (
        <>
          <Losses layer={layer} />
          <button
            type="button"
            class="main"
            onClick={() => {
              take(layer);
              close();
            }}
          >
            {words.importUse}
          </button>
        </>
      )}
    </Dialog>
  );
}

function LayerChoice({ layers, chosen, choose }: { layers: Layer[]; chosen: number; choose(index: number): void }) {
  const [pictures] = useThumbnails(
    layers.map((layer) => layer.style),
    JSON.stringify(layers),
  );
  return (
    <fieldset class="choices">
      <legend>{words.importWhich}</legend>
      {layers.map((layer, index) => (
        <label class="preset">
          <Thumbnail drawn={pictures[index]} />
          <span class="caption">
            <input type="radio" name="layer" checked={index === chosen} onChange={() => choose(index)} /> {layer.name}
          </span>
        </label>
      ))}
    </fieldset>
  );
}

function Losses({ layer }: { layer: Layer }) {
  if (layer.losses.length === 0) return <p>{words.importNoLosses}</p>;
  return (
    <>
      <h3>{words.importLosses}</h3>
      <ul class="losses" tabIndex={0} aria-label={words.importLosses}>
        {layer.losses.map((loss) => (
          <li>
            <b>{loss.path}</b> {label(loss.kind)}: {loss.reason}
          </li>
        ))}
      </ul>
    </>
  );
}
