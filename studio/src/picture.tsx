// What is drawn, alone or beside what it is compared with, and what can be laid over it.
import type { ComponentChildren } from 'preact';
import { useLayoutEffect, useRef, useState } from 'preact/hooks';
import { type CompareMode, differenceOf } from './compare';
import type { Drawn } from './server';
import { useStore } from './store';
import { words } from './words';

export type Overlay = keyof typeof words.overlayNames;

const GRID_FROM = 8; // times as large

interface PicturesProps {
  drawn: Drawn;
  mode: CompareMode;
  factor: number;
  overlays: Overlay[];
  onPixel(text: string): void;
}

// The picture, and in its place or beside it what it is compared with.
export function Pictures({ drawn, mode, factor, overlays, onPixel }: PicturesProps) {
  const { style, comparison, compared } = useStore();
  const [wipe, setWipe] = useState(0.5);
  if (mode === 'difference' && compared) return <DifferenceView one={drawn} other={compared} factor={factor} />;
  const view = (of: Drawn, from?: number, extra?: ComponentChildren) => (
    <PictureView drawn={of} factor={factor} overlays={overlays} onPixel={onPixel} text={String(style.text ?? '')} from={from}>
      {extra}
    </PictureView>
  );
  if (mode === 'side' && compared) {
    return (
      <div class="pictures">
        <figure>
          {view(compared)}
          <figcaption>{comparison?.label}</figcaption>
        </figure>
        <figure>
          {view(drawn)}
          <figcaption>{words.compareNow}</figcaption>
        </figure>
      </div>
    );
  }
  if (mode === 'wipe' && compared) {
    return (
      <figure>
        {view(drawn, wipe, <Wipe drawn={compared} under={drawn} factor={factor} at={wipe} />)}
        <input type="range" aria-label={words.compareWipe} min={0} max={1} step={0.01} value={wipe} onInput={(event) => setWipe(event.currentTarget.valueAsNumber)} />
      </figure>
    );
  }
  return view(drawn);
}

// Without a label it is decoration. Puts the pixels where they are seen, before the browser paints.
export function Canvas({ drawn, factor, label }: { drawn: Pick<Drawn, 'width' | 'height' | 'pixels'>; factor: number; label: string }) {
  const canvas = useRef<HTMLCanvasElement>(null);
  useLayoutEffect(() => {
    if (!canvas.current) return;
    canvas.current.width = drawn.width;
    canvas.current.height = drawn.height;
    canvas.current.getContext('2d')?.putImageData(new ImageData(drawn.pixels, drawn.width, drawn.height), 0, 0);
  }, [drawn]);
  return (
    <canvas
      ref={canvas}
      role={label ? 'img' : undefined}
      aria-label={label || undefined}
      aria-hidden={!label}
      style={{ width: `${drawn.width * factor}px`, height: `${drawn.height * factor}px`, imageRendering: factor > 1 ? 'pixelated' : 'auto' }}
    />
  );
}

interface ViewProps {
  drawn: Drawn;
  factor: number;
  overlays: Overlay[];
  text: string;
  from?: number; // part of the width that is left out
  onPixel(text: string): void;
  children?: ComponentChildren;
}

function PictureView({ drawn, factor, overlays, text, from = 0, onPixel, children }: ViewProps) {
  const point = (event: PointerEvent) => {
    const box = (event.currentTarget as Element).getBoundingClientRect();
    const [x, y] = [Math.floor((event.clientX - box.x) / factor), Math.floor((event.clientY - box.y) / factor)];
    if (x < 0 || y < 0 || x >= drawn.width || y >= drawn.height) return;
    const at = 4 * (y * drawn.width + x);
    const [red, green, blue, alpha] = drawn.pixels.subarray(at, at + 4);
    const color = [alpha, red, green, blue].map((value) => value.toString(16).padStart(2, '0').toUpperCase()).join('');
    onPixel(`${x}, ${y}  #${color}`);
  };
  return (
    <div class="picture" onPointerMove={point} onPointerLeave={() => onPixel('')}>
      <div style={{ clipPath: from > 0 ? `inset(0 0 0 ${from * 100}%)` : undefined }}>
        <Canvas drawn={drawn} factor={factor} label={words.pictureOf(text, drawn.width, drawn.height)} />
      </div>
      {children}
      {factor >= GRID_FROM && <div class="grid" style={{ backgroundSize: `${factor}px ${factor}px` }} />}
      <Overlays drawn={drawn} overlays={overlays} factor={factor} />
    </div>
  );
}

function Overlays({ drawn, overlays, factor }: { drawn: Drawn; overlays: Overlay[]; factor: number }) {
  const [left, top, right, bottom] = drawn.margins;
  const boxes = [
    ...(overlays.includes('margins') ? [{ kind: 'margins', box: [left, top, drawn.width - right, drawn.height - bottom] }] : []),
    ...(overlays.includes('lines') ? drawn.lines.map((line) => ({ kind: 'lines', box: line.box })) : []),
    ...(overlays.includes('ink') ? drawn.lines.map((line) => ({ kind: 'ink', box: line.ink })) : []),
  ];
  if (boxes.length === 0) return null;
  return (
    <svg class="overlays" viewBox={`0 0 ${drawn.width} ${drawn.height}`} style={{ width: `${drawn.width * factor}px`, height: `${drawn.height * factor}px` }} aria-hidden="true">
      {boxes.map(({ kind, box }) => (
        <rect class={kind} x={box[0]} y={box[1]} width={box[2] - box[0]} height={box[3] - box[1]} />
      ))}
    </svg>
  );
}

// The other picture left of the line, its text where the first one has it.
function Wipe({ drawn, under, factor, at }: { drawn: Drawn; under: Drawn; factor: number; at: number }) {
  const [x, y] = [under.margins[0] - drawn.margins[0], under.margins[1] - drawn.margins[1]];
  const width = under.width * at;
  return (
    <div class="wipe" style={{ width: `${width * factor}px`, height: `${under.height * factor}px` }}>
      <div style={{ transform: `translate(${x * factor}px, ${y * factor}px)` }}>
        <Canvas drawn={drawn} factor={factor} label={words.compare} />
      </div>
    </div>
  );
}

function DifferenceView({ one, other, factor }: { one: Drawn; other: Drawn; factor: number }) {
  const difference = differenceOf(one, other);
  return (
    <figure>
      <Canvas drawn={difference} factor={factor} label={words.compareModes.difference} />
      <figcaption>{difference.count === 0 ? words.compareSame : words.compareCount(difference.count)}</figcaption>
    </figure>
  );
}
