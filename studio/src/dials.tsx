// The controls that are turned and moved by hand: angles and ramps.
import { useState } from 'preact/hooks';
import { type ControlProps, Fields, cssColor, numberOf, setNumber } from './controls';
import type { Json } from './server';
import { current, setValue, useStore, valueAt } from './store';
import { words } from './words';

// Follows the pointer until it is released.
function follow(event: PointerEvent, move: (event: PointerEvent) => void) {
  const target = event.currentTarget as Element;
  target.setPointerCapture(event.pointerId);
  const moved = (next: Event) => move(next as PointerEvent);
  target.addEventListener('pointermove', moved);
  target.addEventListener('lostpointercapture', () => target.removeEventListener('pointermove', moved), { once: true });
}

// Counter-clockwise from the right; the dot is where the light, or the ramp's end, is.
export function Angle(props: ControlProps) {
  const value = numberOf(props);
  const radians = (value * Math.PI) / 180;
  const [x, y] = [20 + 14 * Math.cos(radians), 20 - 14 * Math.sin(radians)];
  const turn = (event: PointerEvent, target: Element) => {
    const box = target.getBoundingClientRect();
    const [dx, dy] = [event.clientX - box.x - box.width / 2, box.y + box.height / 2 - event.clientY];
    if (Math.hypot(dx, dy) < 2) return;
    const degrees = Math.round((Math.atan2(dy, dx) * 180) / Math.PI);
    setNumber(props, event.shiftKey ? Math.round(degrees / 15) * 15 : degrees);
  };
  return (
    <svg
      class="dial"
      viewBox="0 0 40 40"
      role="slider"
      tabIndex={0}
      aria-label={props.name}
      aria-valuemin={props.field.min}
      aria-valuemax={props.field.max}
      aria-valuenow={value}
      onPointerDown={(event) => {
        const target = event.currentTarget;
        follow(event, (next) => turn(next, target));
        if (event.detail < 2) turn(event, target);
      }}
      onKeyDown={(event) => {
        const by = { ArrowLeft: 1, ArrowUp: 1, ArrowRight: -1, ArrowDown: -1 }[event.key];
        if (!by) return;
        event.preventDefault();
        const next = value + by * (event.shiftKey ? 15 : 1);
        setNumber(props, next > 360 ? next - 360 : next < -360 ? next + 360 : next);
      }}
    >
      <circle class="rim" cx="20" cy="20" r="17" />
      <line x1="20" y1="20" x2={x} y2={y} />
      <circle class="light" cx={x} cy={y} r="4" />
    </svg>
  );
}

interface StopValue extends Json {
  color: string;
  position: number;
  opacity?: number;
}

function stopColor(stop: StopValue): string {
  const color = cssColor(stop.color);
  const alpha = (stop.color.length === 9 ? Number.parseInt(stop.color.slice(1, 3), 16) / 255 : 1) * (stop.opacity ?? 1);
  return `${color.slice(0, 7)}${Math.round(alpha * 255).toString(16).padStart(2, '0')}`;
}

export function Ramp({ field, path, name }: ControlProps) {
  const { style } = useStore();
  const [chosen, setChosen] = useState(0);
  const stops = (valueAt(style, path) as StopValue[] | undefined) ?? [];
  const selected = Math.min(chosen, stops.length - 1);
  const ramp = stops.map((stop) => `${stopColor(stop)} ${stop.position * 100}%`);
  const set = (list: StopValue[]) => setValue(path, list.length > 0 || field.isRequired ? list : undefined);

  // Stops lie in order: one that passes another takes its place in the list.
  const move = (index: number, position: number): number => {
    const list = [...((valueAt(current().style, path) as StopValue[] | undefined) ?? [])];
    const stop = { ...list[index], position: Number(Math.max(0, Math.min(1, position)).toFixed(2)) };
    list.splice(index, 1);
    const after = list.findIndex((other) => other.position > stop.position);
    const place = after < 0 ? list.length : after;
    list.splice(place, 0, stop);
    set(list);
    setChosen(place);
    return place;
  };
  const add = (position: number) => {
    const near = stops.reduce<StopValue | undefined>(
      (best, stop) => (!best || Math.abs(stop.position - position) < Math.abs(best.position - position) ? stop : best),
      undefined,
    );
    const stop = { color: near?.color ?? '#FFFFFF', position: Number(position.toFixed(2)) };
    const list = [...stops, stop].sort((a, b) => a.position - b.position);
    set(list);
    setChosen(list.indexOf(stop));
  };
  const remove = (index: number) => {
    if (stops.length > 1 || !field.isRequired) set(stops.filter((_, other) => other !== index));
  };
  const along = (event: PointerEvent | MouseEvent, bar: Element) => {
    const box = bar.getBoundingClientRect();
    return (event.clientX - box.x) / box.width;
  };
  return (
    <div class="ramp">
      <div
        class="bar"
        title={words.ramp}
        onClick={(event) => event.target === event.currentTarget.firstChild && add(along(event, event.currentTarget))}
      >
        <div class="paint" style={{ backgroundImage: `linear-gradient(to right, ${ramp.length > 1 ? ramp.join(', ') : `${ramp[0] ?? '#0000'}, ${ramp[0] ?? '#0000'}`})` }} />
        {stops.map((stop, index) => (
          <span
            class={index === selected ? 'stop selected' : 'stop'}
            role="slider"
            tabIndex={0}
            aria-label={`${name}, ${words.stop(index)}`}
            aria-valuemin={0}
            aria-valuemax={1}
            aria-valuenow={stop.position}
            style={{ left: `${stop.position * 100}%`, background: cssColor(stop.color) }}
            onFocus={() => setChosen(index)}
            onPointerDown={(event) => {
              const bar = event.currentTarget.parentElement as Element;
              setChosen(index);
              let place = index;
              follow(event, (next) => {
                place = move(place, along(next, bar));
              });
            }}
            onKeyDown={(event) => {
              const by = { ArrowLeft: -0.01, ArrowRight: 0.01 }[event.key];
              if (by) move(index, stop.position + by * (event.shiftKey ? 10 : 1));
              if (event.key === 'Delete' || event.key === 'Backspace') remove(index);
              if (by || event.key === 'Delete' || event.key === 'Backspace') event.preventDefault();
            }}
          />
        ))}
      </div>
      {stops.length === 0 ? (
        <button type="button" onClick={() => add(0.5)}>
          {words.addStop}
        </button>
      ) : (
        <div class="nested">
          <Fields fields={current().schema.stop} path={[...path, selected]} />
        </div>
      )}
    </div>
  );
}
