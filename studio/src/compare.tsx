// Against a state that was kept, or another file.
import { attempt } from './files';
import { Menu } from './menu';
import type { Drawn } from './server';
import { call } from './server';
import { current, update, useStore } from './store';
import { words } from './words';

export type CompareMode = keyof typeof words.compareModes;

export function ComparisonBar({ mode, setMode }: { mode: CompareMode; setMode(mode: CompareMode): void }) {
  const { comparison, styles } = useStore();
  const keep = () => {
    update({ comparison: { style: current().style, label: words.compareKept } });
    if (mode === 'off') setMode('side');
  };
  const withFile = (name: string) =>
    attempt(async () => {
      const opened = await call<{ text: string }>('open', { name });
      update({ comparison: { style: JSON.parse(opened.text), label: name } });
      if (mode === 'off') setMode('side');
    });
  return (
    <span class="group" role="group" aria-label={words.compare}>
      <span class="group-name" aria-hidden="true">
        {words.compare}
      </span>
      <button type="button" onClick={keep}>
        {words.compareKeep}
      </button>
      {styles.length > 0 && (
        <Menu text={words.compareChoose} name={words.compareFile} items={styles.map((name) => ({ name, act: () => void withFile(name) }))} />
      )}
      {comparison && (
        <select aria-label={words.compare} value={mode} onChange={(event) => setMode(event.currentTarget.value as CompareMode)}>
          {Object.entries(words.compareModes).map(([name, text]) => (
            <option value={name}>{text}</option>
          ))}
        </select>
      )}
    </span>
  );
}

interface Difference {
  width: number;
  height: number;
  pixels: Uint8ClampedArray<ArrayBuffer>;
  count: number;
}

// Pixel by pixel, the texts' own boxes upon each other: grey where they are the same, by how much where
// they are not.
export function differenceOf(one: Drawn, other: Drawn): Difference {
  const [left, top] = [Math.max(one.margins[0], other.margins[0]), Math.max(one.margins[1], other.margins[1])];
  const place = (drawn: Drawn) => [left - drawn.margins[0], top - drawn.margins[1]];
  const [[x1, y1], [x2, y2]] = [place(one), place(other)];
  const width = Math.max(x1 + one.width, x2 + other.width);
  const height = Math.max(y1 + one.height, y2 + other.height);
  const pixels = new Uint8ClampedArray(4 * width * height);
  const channel = (drawn: Drawn, x: number, y: number, index: number) =>
    x < 0 || y < 0 || x >= drawn.width || y >= drawn.height ? 0 : drawn.pixels[4 * (y * drawn.width + x) + index];
  let count = 0;
  for (let y = 0; y < height; y++) {
    for (let x = 0; x < width; x++) {
      const most = Math.max(...[0, 1, 2, 3].map((index) => Math.abs(channel(one, x - x1, y - y1, index) - channel(other, x - x2, y - y2, index))));
      if (most > 0) count++;
      pixels.set(most > 0 ? [255, 128 - most / 2, 0, 128 + most / 2] : [128, 128, 128, channel(one, x - x1, y - y1, 3) / 4], 4 * (y * width + x));
    }
  }
  return { width, height, pixels, count };
}
