// One control for each kind of field.
import type { ComponentChildren } from 'preact';
import { useRef, useState } from 'preact/hooks';
import { alphaOf, cssColor, isColor, opaqueOf, withAlpha } from './colors';
import type { Field } from './schema';
import { Mistakes, Refused, keepFile } from './server';
import { type Path, current, pathText, setValue, update, useColor, useStore, valueAt } from './store';
import { Angle, Ramp } from './dials';
import { label, words } from './words';

export interface ControlProps {
  field: Field;
  path: Path;
  name: string; // as it is read out
}

const UNITS: Record<string, string> = { px: 'px', deg: '°', em: 'em' };

export function Fields({ fields, path }: { fields: Field[]; path: Path }) {
  return (
    <>
      {fields.map((field) => (
        <FieldRow key={field.name} field={field} path={[...path, field.name]} />
      ))}
    </>
  );
}

export function FieldRow({ field, path }: { field: Field; path: Path }) {
  const { problems } = useStore();
  const place = pathText(path);
  const own = problems.filter((problem) => problem.path === place);
  const Control = CONTROLS[field.control];
  if (!Control) return null;
  const name = label(field.name);
  const reset = () => !field.isRequired && setValue(path, undefined);
  return (
    <div class={`field of-${field.control}${own.length > 0 ? ' wrong' : ''}`} data-path={place}>
      <span class="name" title={`${field.meaning}. ${words.toDefault}`} onDblClick={reset}>
        {name}
      </span>
      <div class="control" onDblClick={(event) => (event.target as Element).matches('input[type=range], .dial *') && reset()}>
        <Control field={field} path={path} name={name} />
      </div>
      {own.map((problem) => (
        <p class="mistake" role="alert">
          {problem.reason}
          {problem.allowed && !problem.reason.includes(problem.allowed) && ` ${words.allowed(problem.allowed)}`}
        </p>
      ))}
    </div>
  );
}

function valueOf({ field, path }: ControlProps): unknown {
  return valueAt(current().style, path) ?? field.initial;
}

export function numberOf(props: ControlProps): number {
  return (valueOf(props) as number | undefined) ?? props.field.min ?? 0;
}

// What is the default is not written.
export function setNumber({ field, path }: ControlProps, value: number) {
  setValue(path, value === field.initial ? undefined : value);
}

// A long range is finer at its start.
const STEPS = 1000;
const bend = (field: Field) => ((field.max ?? 0) - (field.min ?? 0) > 500 ? 3 : 1);

function roundTo(field: Field, value: number): number {
  const span = (field.max ?? 100) - (field.min ?? 0);
  const digits = field.isWhole || span > 30 ? 0 : 2;
  return Number(value.toFixed(digits));
}

function Slider(props: ControlProps) {
  const { field, name } = props;
  const [min, max] = [field.min ?? 0, field.max ?? 100];
  const value = numberOf(props);
  const place = ((value - min) / (max - min)) ** (1 / bend(field)) * STEPS;
  return (
    <>
      <input
        type="range"
        aria-label={name}
        aria-valuetext={`${value} ${field.unit}`}
        min={0}
        max={STEPS}
        value={Math.max(0, Math.min(STEPS, place || 0))}
        onInput={(event) => {
          const part = event.currentTarget.valueAsNumber / STEPS;
          setNumber(props, roundTo(field, min + (max - min) * part ** bend(field)));
        }}
        onKeyDown={(event) => {
          const by = { ArrowLeft: -1, ArrowDown: -1, ArrowRight: 1, ArrowUp: 1 }[event.key];
          if (!by) return;
          event.preventDefault();
          const step = field.isWhole || max - min > 30 ? 1 : 0.01;
          setNumber(props, roundTo(field, Math.max(min, Math.min(max, value + by * step * (event.shiftKey ? 10 : 1)))));
        }}
      />
      <NumberField {...props} />
    </>
  );
}

// What is typed stays as it is typed until the field is left: one that is empty meanwhile is not yet the
// default.
function NumberField(props: ControlProps) {
  const { field, name, path } = props;
  const [typed, setTyped] = useState<string>();
  const value = valueOf(props) as number | undefined;
  // Another control, or a step back, may have changed it since.
  const isTyped = typed !== undefined && (typed === '' || Number(typed) === value);
  const leave = () => {
    if (typed === '' && !field.isRequired) setValue(path, undefined);
    setTyped(undefined);
  };
  return (
    <span class="number">
      <input
        type="number"
        aria-label={words.number(name)}
        step="any"
        value={isTyped ? typed : value}
        onInput={(event) => {
          const given = event.currentTarget.valueAsNumber;
          setTyped(event.currentTarget.value);
          if (!Number.isNaN(given)) setNumber(props, given);
        }}
        onBlur={leave}
      />
      <span class="unit">{UNITS[field.unit] ?? ''}</span>
    </span>
  );
}

function Switch(props: ControlProps) {
  const { field, path, name } = props;
  return (
    <input
      type="checkbox"
      role="switch"
      aria-label={name}
      checked={valueOf(props) as boolean}
      onChange={(event) => {
        const value = event.currentTarget.checked;
        setValue(path, value === field.initial ? undefined : value);
      }}
    />
  );
}

function Select(props: ControlProps) {
  const { field, path, name } = props;
  return (
    <select
      aria-label={name}
      value={valueOf(props) as string}
      onChange={(event) => {
        const value = event.currentTarget.value;
        setValue(path, value === field.initial ? undefined : value);
      }}
    >
      {field.choices.map((choice) => (
        <option value={choice}>{label(choice)}</option>
      ))}
    </select>
  );
}

function Text(props: ControlProps) {
  return (
    <input
      type="text"
      aria-label={props.name}
      spellcheck={false}
      value={(valueOf(props) as string | undefined) ?? ''}
      onInput={(event) => setValue(props.path, event.currentTarget.value || undefined)}
    />
  );
}

function Color(props: ControlProps) {
  const { field, path, name } = props;
  const value = valueOf(props) as string | undefined;
  return (
    <ColorPicker
      name={name}
      value={value}
      onChange={(color) => setValue(path, color === field.initial && !field.isRequired ? undefined : color)}
      onNone={field.initial === undefined && !field.isRequired ? () => setValue(path, undefined) : undefined}
    />
  );
}

interface PickerProps {
  name: string;
  value: string | undefined;
  onChange(color: string): void;
  onNone?(): void;
}

export function ColorPicker({ name, value, onChange, onNone }: PickerProps) {
  const { recent } = useStore();
  const [typed, setTyped] = useState<string>();
  const text = value ?? '';
  const opaque = opaqueOf(text);
  const alpha = alphaOf(text);
  return (
    <span class="color">
      <input
        type="color"
        aria-label={name}
        value={opaque}
        onInput={(event) => onChange(withAlpha(event.currentTarget.value, alpha))}
        onChange={(event) => useColor(withAlpha(event.currentTarget.value, alpha))}
      />
      <input
        type="text"
        class="hex"
        aria-label={words.hex(name)}
        spellcheck={false}
        placeholder={words.none}
        aria-invalid={typed !== undefined && typed !== '' && !isColor(typed)}
        value={typed ?? text}
        onInput={(event) => {
          const given = event.currentTarget.value.trim();
          setTyped(given);
          if (isColor(given)) onChange(given.toUpperCase());
          if (given === '' && onNone) onNone();
        }}
        onBlur={() => {
          if (typed && isColor(typed)) useColor(typed.toUpperCase());
          setTyped(undefined);
        }}
      />
      <input
        type="range"
        class="alpha"
        style={{ '--color': opaque }}
        aria-label={words.alpha(name)}
        min={0}
        max={255}
        value={alpha}
        onInput={(event) => onChange(withAlpha(opaque, event.currentTarget.valueAsNumber))}
      />
      {recent.length > 0 && (
        <span class="recent">
          {recent.map((color) => (
            <button type="button" class="swatch" style={{ background: cssColor(color) }} aria-label={words.recent(color)} title={color} onClick={() => onChange(color)} />
          ))}
        </span>
      )}
    </span>
  );
}

function Sides(props: ControlProps) {
  const value = valueOf(props) as number | number[];
  if (!Array.isArray(value)) {
    return (
      <>
        <Slider {...props} field={{ ...props.field, min: 0, max: 4096, isWhole: true }} />
        <button type="button" onClick={() => setValue(props.path, [value, value, value, value])}>
          {words.eachSide}
        </button>
      </>
    );
  }
  return (
    <>
      {words.sides.map((side, index) => (
        <input
          type="number"
          class="side"
          aria-label={`${props.name}, ${side}`}
          title={side}
          value={value[index]}
          onInput={(event) => {
            const given = event.currentTarget.valueAsNumber;
            if (!Number.isNaN(given)) setValue([...props.path, index], given);
          }}
        />
      ))}
      <button type="button" onClick={() => setValue(props.path, value[0] || undefined)}>
        {words.allSides}
      </button>
    </>
  );
}

function Choices({ name, choices, value, onChange }: { name: string; choices: [string, string][]; value: string; onChange(choice: string): void }) {
  return (
    <select aria-label={name} value={value} onChange={(event) => onChange(event.currentTarget.value)}>
      {choices.map(([choice, text]) => (
        <option value={choice}>{text}</option>
      ))}
    </select>
  );
}

// Nothing, or a record with fields of its own.
function BoxControl(props: ControlProps) {
  const { path, name } = props;
  const kind = valueOf(props) === undefined ? 'none' : 'box';
  return (
    <>
      <Choices name={name} value={kind} onChange={(choice) => setValue(path, choice === 'none' ? undefined : NEW_BOX)} choices={[['none', words.none], ['box', words.box]]} />
      {kind === 'box' && (
        <Nested>
          <Fields fields={current().schema.background} path={path} />
        </Nested>
      )}
    </>
  );
}

const NEW_BOX = { color: '#80000000' };
const FILLS = ['ramp', 'file'];

function Fill({ path, name }: ControlProps) {
  const { schema, style } = useStore();
  const value = valueAt(style, path) as string | { type: string } | undefined;
  // What paints by itself: a ramp or a picture that must be there.
  const kinds = schema.effects.filter((kind) => kind.fields.some((field) => field.isRequired && FILLS.includes(field.control)));
  const kind = value === undefined ? 'none' : typeof value === 'string' ? 'color' : value.type;
  const choose = (choice: string) =>
    setValue(path, choice === 'none' ? undefined : choice === 'color' ? '#FFFFFF' : schema.newEffect(choice));
  return (
    <>
      <Choices
        name={name}
        value={kind}
        onChange={choose}
        choices={[['none', words.none], ['color', words.color], ...kinds.map((item): [string, string] => [item.type, label(item.type)])]}
      />
      {typeof value === 'string' && <ColorPicker name={name} value={value} onChange={(color) => setValue(path, color)} />}
      {typeof value === 'object' && (
        <Nested>
          <Fields fields={(schema.kind(value.type)?.fields ?? []).filter((field) => field.name !== 'enabled')} path={path} />
        </Nested>
      )}
    </>
  );
}

export function Nested({ children }: { children: ComponentChildren }) {
  return <div class="nested">{children}</div>;
}

// A file of the user's: dropped, or chosen.
export function DropZone({ text, accept, name, onFile }: { text: string; accept: string; name: string; onFile(file: File): void }) {
  const [isOver, setIsOver] = useState(false);
  const input = useRef<HTMLInputElement>(null);
  return (
    <div
      class={isOver ? 'drop over' : 'drop'}
      onDragOver={(event) => {
        event.preventDefault();
        setIsOver(true);
      }}
      onDragLeave={() => setIsOver(false)}
      onDrop={(event) => {
        event.preventDefault();
        setIsOver(false);
        const file = event.dataTransfer?.files[0];
        if (file) onFile(file);
      }}
    >
      <label>
        <span>{text}</span>
        <input
          ref={input}
          type="file"
          aria-label={name}
          accept={accept}
          onChange={(event) => {
            const file = event.currentTarget.files?.[0];
            if (file) onFile(file);
            if (input.current) input.current.value = '';
          }}
        />
      </label>
    </div>
  );
}

export async function dropInto(path: Path, file: File, kind: 'font' | 'picture') {
  try {
    setValue(path, await keepFile(file, kind, current().session.maxFile));
  } catch (error) {
    if (error instanceof Mistakes || error instanceof Refused) {
      update({ problems: [{ path: pathText(path), reason: `${file.name}: ${error.message}`, allowed: '' }] });
    } else {
      update({ isLost: true });
    }
  }
}

function PictureFile(props: ControlProps) {
  return (
    <>
      <span class="file">{valueOf(props) as string}</span>
      <DropZone name={props.name} text={words.chooseFile} accept="image/png" onFile={(file) => dropInto(props.path, file, 'picture')} />
    </>
  );
}

const CONTROLS: Record<string, (props: ControlProps) => ComponentChildren> = {
  text: Text,
  number: NumberField,
  slider: Slider,
  angle: (props) => (
    <>
      <Angle {...props} />
      <NumberField {...props} />
    </>
  ),
  switch: Switch,
  menu: Select,
  color: Color,
  sides: Sides,
  ramp: Ramp,
  fill: Fill,
  box: BoxControl,
  file: PictureFile,
};
