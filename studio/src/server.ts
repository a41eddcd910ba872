// Calls of the studio's server, relative to the page's own address, which has the secret.
import { words } from './words';

export type Json = Record<string, unknown>;

export interface Problem {
  path: string;
  reason: string;
  allowed: string;
}

export interface Session {
  schema: Json;
  families: string[];
  folder: string;
  file: string;
  maxFile: number; // bytes
  presets: { name: string; style: Json }[];
}

export type Box = [number, number, number, number];

// Of a variable font.
export interface Axis {
  tag: string;
  min: number;
  initial: number;
  max: number;
}

export interface Drawn {
  width: number;
  height: number;
  margins: Box;
  lines: { box: Box; ink: Box; baseline: number }[];
  fonts: { family: string; characters: number }[];
  axes: Axis[];
  missing: { codePoint: string; script: string }[];
  stacking: number[];
  pixels: Uint8ClampedArray<ArrayBuffer>;
}

// The server is not there.
export class Lost extends Error {}
// The server says no.
export class Refused extends Error {
  constructor(
    message: string,
    readonly isConflict: boolean,
  ) {
    super(message);
  }
}
// A style that cannot be drawn.
export class Mistakes extends Error {
  constructor(readonly problems: Problem[]) {
    super(problems.map((problem) => problem.reason).join('\n'));
  }
}

async function post(name: string, body: BodyInit, type: string): Promise<Response> {
  let response: Response;
  try {
    response = await fetch(name, { method: 'POST', body, headers: { 'Content-Type': type } });
  } catch {
    throw new Lost();
  }
  if (response.ok) return response;
  const said = await response.json().catch(() => ({}));
  throw new Refused(said.error ?? `${response.status}`, response.status === 409);
}

export async function call<T>(name: string, request: Json): Promise<T> {
  const answer = await (await post(name, JSON.stringify(request), 'application/json')).json();
  if (answer.problems) throw new Mistakes(answer.problems);
  return answer as T;
}

async function callWorker(name: string, request: Json): Promise<[Json, ArrayBuffer, number]> {
  const response = await post(name, JSON.stringify(request), 'application/json');
  const bytes = await response.arrayBuffer();
  const start = 4 + new DataView(bytes).getUint32(0, true);
  const answer = JSON.parse(new TextDecoder().decode(new Uint8Array(bytes, 4, start - 4)));
  if (answer.problems) throw new Mistakes(answer.problems);
  return [answer, bytes, start];
}

export interface DrawRequest {
  style: Json;
  name: string;
  scale?: number;
  fit?: [number, number];
}

export async function draw(request: DrawRequest): Promise<Drawn> {
  const [answer, bytes, start] = await callWorker('render', { ...request });
  return { ...(answer as unknown as Drawn), pixels: new Uint8ClampedArray(bytes.slice(start)) };
}

export async function drawFile(request: DrawRequest, format: 'png' | 'webp'): Promise<Blob> {
  const [, bytes, start] = await callWorker('file', { ...request, format });
  return new Blob([bytes.slice(start)], { type: `image/${format}` });
}

export async function ask<T>(name: string, request: Json): Promise<T> {
  return (await callWorker(name, request))[0] as T;
}

// What an answer to a file's bytes says.
async function sendFile<T>(name: string, file: File, most: number): Promise<T> {
  if (file.size > most) throw new Refused(words.tooLarge(Math.floor(most / 2 ** 20)), false);
  const response = await post(`${name}?name=${encodeURIComponent(file.name)}`, file, 'application/octet-stream');
  const answer = await response.json();
  if (answer.problems) throw new Mistakes(answer.problems);
  return answer as T;
}

// Keeps a file that styles may use; its name from now on.
export async function keepFile(file: File, kind: 'font' | 'picture', most: number): Promise<string> {
  return (await sendFile<{ name: string }>(kind, file, most)).name;
}

// A text with its effects, as another program had it.
export interface Layer {
  name: string;
  style: Json;
  losses: { path: string; kind: string; reason: string }[];
}

const LAYERED = /\.ps[bd]$/i;

export function isLayered(file: File): boolean {
  return LAYERED.test(file.name);
}

export async function readLayers(file: File, most: number): Promise<Layer[]> {
  type Answer = { layers: Layer[] };
  const answer = isLayered(file) ? sendFile<Answer>('layers', file, most) : ask<Answer>('import', { text: await file.text() });
  return (await answer).layers;
}
