// The picture on its backdrop, and what can be laid over it.
import type { ComponentChildren, RefObject } from 'preact';
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { ComparisonBar, type CompareMode, differenceOf } from './compare';
import { ColorPicker, DropZone } from './controls';
import type { Drawn } from './server';
import { update, useStore } from './store';
import { words } from './words';

type Backdrop = keyof typeof words.backdrops;
type Overlay = keyof typeof words.overlayNames;

const ZOOMS = [0.25, 0.5, 1, 2, 4, 8, 16, 32];
const GRID_FROM = 8;
const DENSITIES = [1, 2, 3];
const MOST_FITTED = 4;
// Of characters that belong to none.
const NO_SCRIPTS = ['', 'Unknown', 'Common', 'Inherited'];

export function Stage() {
  const { drawn, density, comparison, compared, style } = useStore();
  const [backdrop, setBackdrop] = useState<Backdrop>('checker');
  const [color, setColor] = useState('#3F51B5');
  const [photo, setPhoto] = useState('');
  const [zoom, setZoom] = useState(0);
  const [overlays, setOverlays] = useState<Overlay[]>([]);
  const [mode, setMode] = useState<CompareMode>('off');
  const [wipe, setWipe] = useState(0.5);
  const [pixel, setPixel] = useState('');
  const room = useRef<HTMLDivElement>(null);
  const [size, setSize] = useState([800, 500]);
  useEffect(() => {
    const observer = new ResizeObserver(([entry]) => setSize([entry.contentRect.width, entry.contentRect.height]));
    if (room.current) observer.observe(room.current);
    return () => observer.disconnect();
  }, []);

  const isSide = mode === 'side' && compared !== undefined;
  const shown = drawn && { width: drawn.width * (isSide ? 2 : 1), height: drawn.height };
  const fitted = shown ? Math.min(MOST_FITTED, (size[0] - (isSide ? 72 : 32)) / shown.width, (size[1] - (isSide ? 72 : 32)) / shown.height) : 1;
  const factor = density > 0 ? 1 / density : zoom || (fitted >= 1 ? Math.floor(fitted) : fitted);
  useCentre(room, factor);
  // The wheel with Ctrl goes through the steps of the zoom.
  const wheel = (event: WheelEvent) => {
    if (!event.ctrlKey || density > 0) return;
    event.preventDefault();
    const next = event.deltaY < 0 ? ZOOMS.find((item) => item > factor) : ZOOMS.findLast((item) => item < factor);
    if (next) setZoom(next);
  };
  const paint = backdrop === 'color' ? { background: color } : backdrop === 'photo' && photo ? { backgroundImage: `url(${photo})` } : {};
  const picture = (of: Drawn, extra?: ComponentChildren) => (
    <PictureView drawn={of} factor={factor} overlays={overlays} onPixel={setPixel} text={String(style.text ?? '')}>
      {extra}
    </PictureView>
  );
  return (
    <main class="stage">
      <div class="bar" role="toolbar" aria-label={words.picture}>
        <Group name={words.backdrop}>
          {(Object.keys(words.backdrops) as Backdrop[]).map((item) => (
            <Toggle key={item} text={words.backdrops[item]} isOn={backdrop === item} onClick={() => setBackdrop(item)} />
          ))}
        </Group>
        <label>
          {words.zoom}{' '}
          <select value={zoom} onChange={(event) => setZoom(Number(event.currentTarget.value))}>
            <option value={0}>{words.zoomFit}</option>
            {ZOOMS.map((item) => (
              <option value={item}>{item * 100} %</option>
            ))}
          </select>
        </label>
        <Group name={words.overlays}>
          {(Object.keys(words.overlayNames) as Overlay[]).map((item) => (
            <Toggle
              key={item}
              text={words.overlayNames[item]}
              isOn={overlays.includes(item)}
              onClick={() => setOverlays(overlays.includes(item) ? overlays.filter((other) => other !== item) : [...overlays, item])}
            />
          ))}
        </Group>
        <label>
          {words.phone}{' '}
          <select value={density} onChange={(event) => update({ density: Number(event.currentTarget.value) })}>
            <option value={0}>{words.phoneOff}</option>
            {DENSITIES.map((item) => (
              <option value={item}>{item}×</option>
            ))}
          </select>
        </label>
        <ComparisonBar mode={mode} setMode={setMode} wipe={wipe} setWipe={setWipe} />
      </div>
      {backdrop === 'color' && <ColorPicker name={words.backdropColor} value={color} onChange={setColor} />}
      {backdrop === 'photo' && (
        <DropZone name={words.backdropPhoto} text={words.backdropPhoto} accept="image/*" onFile={(file) => setPhoto(URL.createObjectURL(file))} />
      )}
      <div class={`room ${backdrop}`} style={paint} ref={room} tabIndex={0} role="region" aria-label={words.picture} onWheel={wheel}>
        <div class={density > 0 ? 'phone' : 'plain'}>
          {drawn && mode === 'difference' && compared ? (
            <DifferenceView one={drawn} other={compared} factor={factor} />
          ) : (
            drawn && (
              <div class="pictures">
                {isSide && (
                  <figure>
                    {picture(compared)}
                    <figcaption>{comparison?.label}</figcaption>
                  </figure>
                )}
                {picture(drawn, mode === 'wipe' && compared && comparison && <Wipe drawn={compared} under={drawn} factor={factor} at={wipe} />)}
              </div>
            )
          )}
        </div>
      </div>
      <Status drawn={drawn} pixel={pixel} />
    </main>
  );
}

// What was in the middle of the view stays there when the zoom changes.
function useCentre(room: RefObject<HTMLDivElement | null>, factor: number) {
  const before = useRef(factor);
  useLayoutEffect(() => {
    const view = room.current;
    if (!view || before.current === factor) return;
    const grown = factor / before.current;
    before.current = factor;
    const place = (start: number, length: number, whole: number) =>
      whole <= length ? 0 : start > 0 ? (start + length / 2) * grown - length / 2 : (whole - length) / 2;
    view.scrollTo(place(view.scrollLeft, view.clientWidth, view.scrollWidth), place(view.scrollTop, view.clientHeight, view.scrollHeight));
  }, [factor]);
}

function Group({ name, children }: { name: string; children: ComponentChildren }) {
  return (
    <span class="group" role="group" aria-label={name}>
      <span class="group-name" aria-hidden="true">
        {name}
      </span>
      {children}
    </span>
  );
}

export function Toggle({ text, isOn, onClick }: { text: string; isOn: boolean; onClick(): void }) {
  return (
    <button type="button" aria-pressed={isOn} onClick={onClick}>
      {text}
    </button>
  );
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
  onPixel(text: string): void;
  children?: ComponentChildren;
}

function PictureView({ drawn, factor, overlays, text, onPixel, children }: ViewProps) {
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
      <Canvas drawn={drawn} factor={factor} label={words.pictureOf(text, drawn.width, drawn.height)} />
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

function Status({ drawn, pixel }: { drawn: Drawn | undefined; pixel: string }) {
  const { problems, schema } = useStore();
  if (!drawn) return <footer class="status" />;
  const known = schema.style.map((field) => field.name);
  const loose = problems.filter((problem) => !known.some((name) => problem.path.startsWith(`$.${name}`)));
  const scripts = [...new Set(drawn.missing.map((item) => item.script).filter((script) => !NO_SCRIPTS.includes(script)))].join(', ');
  const others = drawn.fonts.slice(1).map((font) => font.family);
  return (
    <footer class="status">
      <span>
        {drawn.width} × {drawn.height} px
      </span>
      <span class="pixel">{pixel}</span>
      {drawn.missing.length > 0 && (
        <span class="mistake" role="alert">
          {words.missing(drawn.missing.map((item) => item.codePoint).join(', '))} {scripts ? words.missingFonts(scripts) : words.missingFont}
        </span>
      )}
      {others.length > 0 && <span>{words.fallback([...new Set(others)].join(', '))}</span>}
      {loose.map((problem) => (
        <span class="mistake" role="alert">
          {problem.path === '$' ? '' : `${problem.path}: `}
          {problem.reason}
        </span>
      ))}
    </footer>
  );
}
