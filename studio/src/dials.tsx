// The controls that are turned and moved by hand: angles and ramps.
import type { TargetedPointerEvent } from 'preact';
import { useState } from 'preact/hooks';
import { channelsOf, colorOf, cssColor } from './colors';
import { type ControlProps, Fields, Nested, numberOf, setNumber } from './controls';
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

// With the opacity within.
function paintedOf(stop: StopValue): number[] {
  const [red, green, blue, alpha] = channelsOf(stop.color);
  return [red, green, blue, alpha * (stop.opacity ?? 1)];
}

const rounded = (position: number) => Number(Math.max(0, Math.min(1, position)).toFixed(2));

// Stops lie in order: one that passes another takes its place in the list.
function placed(stops: StopValue[], stop: StopValue): [StopValue[], number] {
  const after = stops.findIndex((other) => other.position > stop.position);
  const place = after < 0 ? stops.length : after;
  return [stops.toSpliced(place, 0, stop), place];
}

// A new one has the colour that the ramp has there, so that nothing changes yet.
function stopAt(stops: StopValue[], position: number): StopValue {
  const right = stops.find((stop) => stop.position >= position) ?? stops.at(-1);
  const left = stops.findLast((stop) => stop.position <= position) ?? stops[0];
  if (!left || !right) return { color: '#FFFFFF', position };
  const part = right.position > left.position ? (position - left.position) / (right.position - left.position) : 0;
  const [from, to] = [paintedOf(left), paintedOf(right)];
  return { color: colorOf(from.map((value, index) => value + (to[index] - value) * part)), position };
}

function paintOf(stops: StopValue[]): string {
  const colors = stops.map((stop) => `${cssColor(colorOf(paintedOf(stop)))} ${stop.position * 100}%`);
  return `linear-gradient(to right, ${(colors.length > 1 ? colors : [colors[0], colors[0]]).join(', ')})`;
}

export function Ramp({ field, path, name }: ControlProps) {
  useStore();
  const [chosen, setChosen] = useState(0);
  const now = () => (valueAt(current().style, path) as StopValue[] | undefined) ?? [];
  const stops = now();
  const selected = Math.min(chosen, stops.length - 1);
  const put = ([list, place]: [StopValue[], number]) => {
    setValue(path, list);
    setChosen(place);
    return place;
  };
  const add = (position: number) => put(placed(stops, stopAt(stops, rounded(position))));
  const move = (index: number, position: number) => {
    const list = now();
    return put(placed(list.toSpliced(index, 1), { ...list[index], position: rounded(position) }));
  };
  const remove = (index: number) => {
    if (stops.length > 1) setValue(path, stops.toSpliced(index, 1));
    else if (!field.isRequired) setValue(path, undefined);
  };
  if (stops.length === 0) {
    return (
      <button type="button" onClick={() => add(0.5)}>
        {words.addStop}
      </button>
    );
  }
  return (
    <div class="ramp">
      <div class="bar" title={words.ramp} onClick={(event) => event.target === event.currentTarget.firstChild && add(along(event, event.currentTarget))}>
        <div class="paint" style={{ backgroundImage: paintOf(stops) }} />
        {stops.map((stop, index) => (
          <Stop
            stop={stop}
            name={`${name}, ${words.stop(index)}`}
            isSelected={index === selected}
            choose={() => setChosen(index)}
            drag={(event) => {
              const bar = event.currentTarget?.parentElement as Element;
              let place = index;
              follow(event, (next) => {
                place = move(place, along(next, bar));
              });
            }}
            move={(position) => move(index, position)}
            remove={() => remove(index)}
          />
        ))}
      </div>
      <Nested>
        <Fields fields={current().schema.stop} path={[...path, selected]} />
      </Nested>
    </div>
  );
}

function along(event: MouseEvent, bar: Element): number {
  const box = bar.getBoundingClientRect();
  return (event.clientX - box.x) / box.width;
}

interface StopProps {
  stop: StopValue;
  name: string;
  isSelected: boolean;
  choose(): void;
  drag(event: TargetedPointerEvent<HTMLElement>): void;
  move(position: number): void;
  remove(): void;
}

function Stop({ stop, name, isSelected, choose, drag, move, remove }: StopProps) {
  const keys = (event: KeyboardEvent) => {
    const by = { ArrowLeft: -0.01, ArrowRight: 0.01 }[event.key];
    if (by) move(stop.position + by * (event.shiftKey ? 10 : 1));
    else if (event.key === 'Delete' || event.key === 'Backspace') remove();
    else return;
    event.preventDefault();
  };
  return (
    <span
      class={isSelected ? 'stop selected' : 'stop'}
      role="slider"
      tabIndex={0}
      aria-label={name}
      aria-valuemin={0}
      aria-valuemax={1}
      aria-valuenow={stop.position}
      style={{ left: `${stop.position * 100}%`, background: cssColor(stop.color) }}
      onFocus={choose}
      onPointerDown={(event) => {
        choose();
        drag(event);
      }}
      onKeyDown={keys}
    />
  );
}
