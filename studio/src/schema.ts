// The field table, as the program's schema has it: every control of the page is made from it.
import type { Json } from './server';

export interface Field {
  name: string;
  control: string; // "slider", "color", ...
  meaning: string;
  unit: string;
  min?: number;
  max?: number;
  isWhole: boolean;
  initial: unknown;
  choices: string[];
  isRequired: boolean;
}

export interface EffectKind {
  type: string;
  meaning: string;
  fields: Field[];
}

export class Schema {
  readonly style: Field[];
  readonly stop: Field[];
  readonly background: Field[];
  readonly effects: EffectKind[];

  constructor(schema: Json) {
    const types = schema.$defs as Record<string, Json>;
    this.style = fieldsOf(schema);
    this.stop = fieldsOf(types.stop);
    this.background = fieldsOf(types.background);
    this.effects = Object.values(types)
      .filter((type) => (type.properties as Record<string, Json> | undefined)?.type)
      .map((type) => ({ type: type.title as string, meaning: type.description as string, fields: fieldsOf(type) }));
  }

  kind(type: unknown): EffectKind | undefined {
    return this.effects.find((kind) => kind.type === type);
  }

  // An effect that can be drawn as it is.
  newEffect(type: string): Json {
    const effect: Json = { type };
    for (const field of this.kind(type)?.fields ?? []) {
      if (!field.isRequired) continue;
      if (field.control === 'ramp') {
        effect[field.name] = [
          { color: '#FFD54F', position: 0 },
          { color: '#D81B60', position: 1 },
        ];
      }
      if (field.control === 'file') effect[field.name] = 'dots.png';
    }
    return effect;
  }
}

function fieldsOf(type: Json): Field[] {
  const required = (type.required as string[] | undefined) ?? [];
  return Object.entries(type.properties as Record<string, Json>)
    .filter(([, property]) => property['x-control'])
    .map(([name, property]) => ({
      name,
      control: property['x-control'] as string,
      meaning: property.description as string,
      unit: (property['x-unit'] as string | undefined) ?? '',
      min: property.minimum as number | undefined,
      max: property.maximum as number | undefined,
      isWhole: property.type === 'integer',
      initial: property.default,
      choices: (property.enum as string[] | undefined) ?? [],
      isRequired: required.includes(name),
    }));
}
