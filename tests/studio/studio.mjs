// Starts the studio and a browser on its page.
import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import fs from 'node:fs';
import { createRequire } from 'node:module';
import path from 'node:path';
import zlib from 'node:zlib';

export const environment = {
  program: process.env.GXTEXT_PROGRAM,
  source: process.env.GXTEXT_SOURCE_DIR,
  output: process.env.GXTEXT_OUTPUT_DIR,
  hasLayerReader: process.env.GXTEXT_LAYER_READER === 'ON',
};
export const require = createRequire(path.join(process.env.GXTEXT_STUDIO_MODULES, 'index.js'));
const { chromium } = require('playwright-core');

export class Studio {
  // `folder` is where styles lie; an object among the options has another {environment}.
  static async start(folder, ...all) {
    const options = all.filter((option) => typeof option === 'string');
    const { environment: more } = Object.assign({}, ...all.filter((option) => typeof option === 'object'));
    const env = { ...process.env, ...more };
    const process_ = spawn(environment.program, ['studio', '--no-browser', ...options], { cwd: folder, stdio: ['ignore', 'pipe', 'pipe'], env });
    const studio = new Studio();
    studio.process = process_;
    studio.errors = '';
    process_.stderr.on('data', (text) => (studio.errors += text));
    studio.ended = new Promise((done) => process_.on('exit', (code, signal) => done({ code, signal })));
    studio.address = await new Promise((done, fail) => {
      process_.stdout.once('data', (text) => done(String(text).trim()));
      process_.on('exit', () => fail(new Error(`the studio ended: ${studio.errors}`)));
    });
    studio.port = Number(new URL(studio.address).port);
    return studio;
  }

  async stop() {
    this.process.kill('SIGTERM');
    return this.ended;
  }
}

export async function startBrowser() {
  return chromium.launch({ executablePath: process.env.GXTEXT_CHROMIUM, args: ['--no-sandbox', '--disable-gpu', '--force-color-profile=srgb'] });
}

// A PNG of the program's: RGBA in rows without a filter.
export function decodePng(bytes) {
  const [width, height] = [bytes.readUInt32BE(16), bytes.readUInt32BE(20)];
  const packed = [];
  for (let at = 8; at < bytes.length; at += 12 + bytes.readUInt32BE(at)) {
    if (bytes.toString('latin1', at + 4, at + 8) === 'IDAT') packed.push(bytes.subarray(at + 8, at + 8 + bytes.readUInt32BE(at)));
  }
  const rows = zlib.inflateSync(Buffer.concat(packed));
  const pixels = Buffer.alloc(4 * width * height);
  for (let y = 0; y < height; y++) {
    const start = y * (4 * width + 1);
    assert.equal(rows[start], 0);
    rows.copy(pixels, 4 * y * width, start + 1, start + 1 + 4 * width);
  }
  return { width, height, pixels };
}

// What the program draws of a style file, as a PNG.
export function drawWithProgram(file, ...options) {
  return execFileSync(environment.program, ['render', file, ...options], { maxBuffer: 1 << 28 });
}

// Fails unless the canvas shows these pixels; both go through a canvas, which keeps no more of a colour
// than its alpha lets it.
export async function assertShown(page, png) {
  const expected = decodePng(png);
  const problem = await page.locator('.picture canvas').first().evaluate((canvas, { width, height, text }) => {
    if (canvas.width !== width || canvas.height !== height) return `${canvas.width} x ${canvas.height}, not ${width} x ${height}`;
    const pixels = Uint8ClampedArray.from(atob(text), (c) => c.charCodeAt(0));
    const other = new OffscreenCanvas(width, height).getContext('2d');
    other.putImageData(new ImageData(pixels, width, height), 0, 0);
    const [one, two] = [canvas.getContext('2d'), other].map((context) => context.getImageData(0, 0, width, height).data);
    const at = one.findIndex((value, index) => value !== two[index]);
    return at < 0 ? '' : `pixel ${(at >> 2) % width}, ${Math.floor((at >> 2) / width)} is another`;
  }, { width: expected.width, height: expected.height, text: expected.pixels.toString('base64') });
  assert.equal(problem, '');
}

// Fails unless small copies of the screenshots are those of the golden sheet, but for what another
// release of browser or fonts changes. GXTEXT_UPDATE_GOLDEN=1 writes the sheet anew.
export async function assertLooks(page, shots, name) {
  const golden = path.join(environment.source, 'tests/golden', name);
  const before = fs.existsSync(golden) ? fs.readFileSync(golden).toString('base64') : '';
  const { sheet, worst } = await page.evaluate(async ({ shots, before }) => {
    const decode = async (text) => createImageBitmap(await (await fetch(`data:image/png;base64,${text}`)).blob());
    const pictures = await Promise.all(shots.map(decode));
    const [columns, scale] = [6, 0.13];
    const [width, height] = [Math.round(pictures[0].width * scale), Math.round(pictures[0].height * scale)];
    const canvas = new OffscreenCanvas(columns * width, Math.ceil(shots.length / columns) * height);
    const context = canvas.getContext('2d', { willReadFrequently: true });
    context.imageSmoothingQuality = 'high';
    pictures.forEach((picture, index) => context.drawImage(picture, (index % columns) * width, Math.floor(index / columns) * height, width, height));
    // Means of blocks, which hardly move with the edges of letters.
    const means = (from) => {
      const block = 7;
      const small = new OffscreenCanvas(Math.ceil(canvas.width / block), Math.ceil(canvas.height / block)).getContext('2d');
      small.imageSmoothingQuality = 'high';
      small.drawImage(from, 0, 0, small.canvas.width, small.canvas.height);
      return small.getImageData(0, 0, small.canvas.width, small.canvas.height).data;
    };
    const now = means(canvas);
    const then = before ? means(await decode(before)) : [];
    const bytes = new Uint8Array(await (await canvas.convertToBlob({ type: 'image/png' })).arrayBuffer());
    const worst = now.reduce((most, value, index) => Math.max(most, Math.abs(value - (then[index] ?? 999))), 0);
    return { sheet: btoa(bytes.reduce((text, byte) => text + String.fromCharCode(byte), '')), worst };
  }, { shots, before });
  const tolerance = 48;
  fs.writeFileSync(path.join(environment.output, name), Buffer.from(sheet, 'base64'));
  if (process.env.GXTEXT_UPDATE_GOLDEN) return fs.writeFileSync(golden, Buffer.from(sheet, 'base64'));
  assert.ok(worst <= tolerance, `${name}: a block differs by ${worst} of 255`);
}

// Pictures beside each other, each so wide.
export async function joined(page, pictures, width) {
  const text = await page.evaluate(async ({ pictures, width }) => {
    const bytesOf = (text) => Uint8Array.from(atob(text), (c) => c.charCodeAt(0));
    const images = await Promise.all(pictures.map((text) => createImageBitmap(new Blob([bytesOf(text)], { type: 'image/png' }))));
    const height = Math.round((images[0].height * width) / images[0].width);
    const canvas = new OffscreenCanvas(images.length * width, height);
    const context = canvas.getContext('2d');
    context.imageSmoothingQuality = 'high';
    images.forEach((image, index) => context.drawImage(image, index * width, 0, width - 8, height));
    const bytes = new Uint8Array(await (await canvas.convertToBlob({ type: 'image/png' })).arrayBuffer());
    return btoa(bytes.reduce((text, byte) => text + String.fromCharCode(byte), ''));
  }, { pictures, width });
  return Buffer.from(text, 'base64');
}
