// The picture on its backdrop, and the bar that says how it is seen.
import type { ComponentChildren, RefObject } from 'preact';
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { ComparisonBar, type CompareMode } from './compare';
import { ColorPicker, DropZone } from './controls';
import { type Overlay, Pictures } from './picture';
import type { Drawn } from './server';
import { update, useStore } from './store';
import { words } from './words';

type Ground = keyof typeof words.backdrops;

interface Backdrop {
  ground: Ground;
  color: string;
  photo: string; // address; empty for none
}

const ZOOMS = [0.25, 0.5, 1, 2, 4, 8, 16, 32];
const DENSITIES = [1, 2, 3];
const MOST_FITTED = 4;
const PHONE_WIDTH = 340; // inside of its frame, app.css
const ROOM_PADDING = 32;
const SIDE_SPACE = 72; // with the gap between two pictures, and what is written beneath
// Of characters that belong to none.
const NO_SCRIPTS = ['', 'Unknown', 'Common', 'Inherited'];

export function Stage() {
  const { drawn, density, comparison, compared, problems } = useStore();
  const [backdrop, setBackdrop] = useState<Backdrop>({ ground: 'checker', color: '#3F51B5', photo: '' });
  const [zoom, setZoom] = useState(0); // 0 fits
  const [overlays, setOverlays] = useState<Overlay[]>([]);
  const [chosenMode, setMode] = useState<CompareMode>('off');
  const [pixel, setPixel] = useState('');
  const room = useRef<HTMLDivElement>(null);
  const size = useSize(room);
  const mode = comparison && compared ? chosenMode : 'off';
  const factor = density > 0 ? 1 / density : zoom || fittedFactor(drawn, size, mode === 'side');
  useCentre(room, factor);
  const step = (isCloser: boolean) => {
    const next = isCloser ? ZOOMS.find((item) => item > factor) : ZOOMS.findLast((item) => item < factor);
    if (next && density === 0) setZoom(next);
  };
  const { ground, color, photo } = backdrop;
  const paint = ground === 'color' ? { background: color } : ground === 'photo' && photo ? { backgroundImage: `url(${photo})` } : {};
  return (
    <main class="stage">
      <div class="bar" role="toolbar" aria-label={words.picture}>
        <Grounds backdrop={backdrop} choose={(item) => setBackdrop({ ...backdrop, ground: item })} />
        <ZoomMenu zoom={zoom} setZoom={setZoom} />
        <PhoneMenu />
        <OverlayToggles overlays={overlays} setOverlays={setOverlays} />
        <ComparisonBar mode={chosenMode} setMode={setMode} />
      </div>
      {ground === 'color' && <ColorPicker name={words.backdropColor} value={color} onChange={(item) => setBackdrop({ ...backdrop, color: item })} />}
      {ground === 'photo' && (
        <DropZone name={words.backdropPhoto} text={words.backdropPhoto} accept="image/*" onFile={(file) => setBackdrop({ ...backdrop, photo: URL.createObjectURL(file) })} />
      )}
      <div
        class={problems.length > 0 ? `room ${ground} stale` : `room ${ground}`}
        style={paint}
        ref={room}
        tabIndex={0}
        role="region"
        aria-label={words.picture}
        onWheel={(event) => {
          if (!event.ctrlKey) return;
          event.preventDefault();
          step(event.deltaY < 0);
        }}
        onKeyDown={(event) => {
          if (event.ctrlKey || event.metaKey) return;
          if (event.key === '+' || event.key === '=') step(true);
          if (event.key === '-') step(false);
          if (event.key === '0') setZoom(0);
        }}
      >
        <div class={density > 0 ? 'phone' : 'plain'}>{drawn && <Pictures drawn={drawn} mode={mode} factor={factor} overlays={overlays} onPixel={setPixel} />}</div>
      </div>
      <Status drawn={drawn} pixel={pixel} factor={factor} />
    </main>
  );
}

// Whole pixels where it is enlarged.
function fittedFactor(drawn: Drawn | undefined, [width, height]: number[], isSide: boolean): number {
  if (!drawn) return 1;
  const space = isSide ? SIDE_SPACE : ROOM_PADDING;
  const most = Math.min(MOST_FITTED, (width - space) / (drawn.width * (isSide ? 2 : 1)), (height - space) / drawn.height);
  return most >= 1 ? Math.floor(most) : most;
}

function useSize(room: RefObject<HTMLDivElement | null>): number[] {
  const [size, setSize] = useState([800, 500]);
  useEffect(() => {
    const observer = new ResizeObserver(([entry]) => setSize([entry.contentRect.width, entry.contentRect.height]));
    if (room.current) observer.observe(room.current);
    return () => observer.disconnect();
  }, []);
  return size;
}

function Grounds({ backdrop, choose }: { backdrop: Backdrop; choose(ground: Ground): void }) {
  return (
    <Group name={words.backdrop}>
      {(Object.keys(words.backdrops) as Ground[]).map((item) => (
        <button
          key={item}
          type="button"
          class="ground"
          title={words.backdrops[item]}
          aria-label={words.backdrops[item]}
          aria-pressed={backdrop.ground === item}
          onClick={() => choose(item)}
        >
          <span class={item} style={item === 'color' ? { background: backdrop.color } : {}} />
        </button>
      ))}
    </Group>
  );
}

function ZoomMenu({ zoom, setZoom }: { zoom: number; setZoom(zoom: number): void }) {
  const { density } = useStore();
  return (
    <label title={words.zoomKeys}>
      {words.zoom}{' '}
      <select value={zoom} disabled={density > 0} onChange={(event) => setZoom(Number(event.currentTarget.value))}>
        <option value={0}>{words.zoomFit}</option>
        {ZOOMS.map((item) => (
          <option value={item}>{item * 100} %</option>
        ))}
      </select>
    </label>
  );
}

function PhoneMenu() {
  const { density } = useStore();
  return (
    <label>
      {words.phone}{' '}
      <select value={density} onChange={(event) => update({ density: Number(event.currentTarget.value) })}>
        <option value={0}>{words.phoneOff}</option>
        {DENSITIES.map((item) => (
          <option value={item}>{item}×</option>
        ))}
      </select>
    </label>
  );
}

function OverlayToggles({ overlays, setOverlays }: { overlays: Overlay[]; setOverlays(overlays: Overlay[]): void }) {
  const toggle = (item: Overlay) => setOverlays(overlays.includes(item) ? overlays.filter((other) => other !== item) : [...overlays, item]);
  return (
    <Group name={words.overlays} isNamed={false}>
      {(Object.keys(words.overlayNames) as Overlay[]).map((item) => (
        <button key={item} type="button" class={`key ${item}`} aria-pressed={overlays.includes(item)} onClick={() => toggle(item)}>
          {words.overlayNames[item]}
        </button>
      ))}
    </Group>
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

function Group({ name, isNamed = true, children }: { name: string; isNamed?: boolean; children: ComponentChildren }) {
  return (
    <span class="group" role="group" aria-label={name}>
      {isNamed && (
        <span class="group-name" aria-hidden="true">
          {name}
        </span>
      )}
      {children}
    </span>
  );
}

function Status({ drawn, pixel, factor }: { drawn: Drawn | undefined; pixel: string; factor: number }) {
  const { problems, schema, density } = useStore();
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
      <span>{Math.round(factor * 100)} %</span>
      <span class="pixel">{pixel}</span>
      {density > 0 && drawn.width > PHONE_WIDTH * density && <span>{words.phoneWider}</span>}
      {drawn.missing.length > 0 && (
        <span class="mistake" role="alert">
          {words.missing(drawn.missing.map((item) => item.codePoint).join(', '))} {scripts ? words.missingFonts(scripts) : words.missingFont}
        </span>
      )}
      {problems.length > 0 && <span class="mistake">{words.stale}</span>}
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
