// Starts the studio and a browser on its page.
import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { createRequire } from 'node:module';
import path from 'node:path';
import zlib from 'node:zlib';

export const environment = {
  program: process.env.GXTEXT_PROGRAM,
  source: process.env.GXTEXT_SOURCE_DIR,
  output: process.env.GXTEXT_OUTPUT_DIR,
};
export const require = createRequire(path.join(process.env.GXTEXT_STUDIO_MODULES, 'index.js'));
const { chromium } = require('playwright-core');

export class Studio {
  // `folder` is where styles lie.
  static async start(folder, ...options) {
    const process_ = spawn(environment.program, ['studio', '--no-browser', ...options], { cwd: folder, stdio: ['ignore', 'pipe', 'pipe'] });
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
