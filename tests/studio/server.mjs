// The studio's server against those that may not use it, and against what goes wrong around it.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import http from 'node:http';
import net from 'node:net';
import os from 'node:os';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { Studio, environment } from './studio.mjs';

const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'studio-test-'));
const style = { text: 'Title', size: 40, effects: [{ type: 'stroke', size: 3, color: '#D00000' }] };
let studio;

before(async () => {
  studio = await Studio.start(folder);
});
after(async () => {
  await studio.stop();
  // Of a worker's death the page is told no more than that it died.
  assert.doesNotMatch(studio.errors, /Sanitizer|runtime error/);
  fs.rmSync(folder, { recursive: true });
});

function ask(name, { method = 'POST', body = '{}', headers = {}, root } = {}, { address, port } = studio) {
  return new Promise((done, fail) => {
    const request = http.request({ host: '127.0.0.1', port, path: (root ?? new URL(address).pathname) + name, method, agent: false });
    request.setHeader('Host', `127.0.0.1:${port}`);
    if (method === 'POST') {
      request.setHeader('Origin', `http://127.0.0.1:${port}`);
      request.setHeader('Content-Type', 'application/json');
      request.setHeader('Content-Length', Buffer.byteLength(body));
    }
    for (const [key, value] of Object.entries(headers)) value === undefined ? request.removeHeader(key) : request.setHeader(key, value);
    request.on('response', async (response) => {
      const chunks = [];
      for await (const chunk of response) chunks.push(chunk);
      done({ status: response.statusCode, headers: response.headers, body: Buffer.concat(chunks) });
    });
    request.on('error', fail);
    if (method === 'POST') request.write(body);
    request.end();
  });
}

// What a worker answers: {words, picture}.
async function work(name, request) {
  const { status, body } = await ask(name, { body: JSON.stringify(request) });
  assert.equal(status, 200);
  const end = 4 + body.readUInt32LE(0);
  return { words: JSON.parse(body.subarray(4, end)), picture: body.subarray(end) };
}

// Process ids of the studio's children, or theirs.
function children(pid) {
  return fs.readFileSync(`/proc/${pid}/task/${pid}/children`, 'utf8').trim().split(' ').filter(Boolean).map(Number);
}
const threads = (pid) => fs.readdirSync(`/proc/${pid}/task`).length;
const serverProcess = () => children(studio.process.pid).find((pid) => threads(pid) > 3);
const workers = () => children(studio.process.pid).filter((pid) => threads(pid) < 3);

test('answers its own page alone', async () => {
  assert.equal((await ask('', { method: 'GET' })).status, 200);
  const refused = [
    ['another secret', { method: 'GET', root: '/00000000000000000000000000000000/' }, 403],
    ['no secret', { method: 'GET', root: '/' }, 403],
    ['another name of this machine', { method: 'GET', headers: { Host: 'studio.example:80' } }, 403],
    ['the name of this machine', { method: 'GET', headers: { Host: `localhost:${studio.port}` } }, 403],
    ['another page', { headers: { Origin: 'http://studio.example' } }, 403],
    ['another port', { headers: { Origin: 'http://127.0.0.1:1' } }, 403],
    ['no page', { headers: { Origin: undefined } }, 403],
    ['a form', { headers: { 'Content-Type': 'text/plain' } }, 411],
    ['a packed body', { headers: { 'Content-Encoding': 'gzip' } }, 411],
    ['another method', { method: 'PUT' }, 405],
  ];
  for (const [who, request, status] of refused) assert.equal((await ask(request.method === 'GET' ? '' : 'session', request)).status, status, who);
  const { headers } = await ask('', { method: 'GET' });
  assert.match(headers['content-security-policy'], /default-src 'none'.*script-src 'self'/);
});

test('reads and writes only what was opened or chosen', async () => {
  const outside = path.join(path.dirname(folder), 'outside.json');
  for (const name of ['../outside.json', outside, '.hidden.json', 'style.txt', '', 'a\u0000.json', 'a\\..\\b.json']) {
    const body = JSON.stringify({ name, style, version: '' });
    assert.equal((await ask('save', { body })).status, 400, name);
    assert.equal((await ask('open', { body })).status, 400, name);
  }
  assert.ok(!fs.existsSync(outside));
  assert.deepEqual(fs.readdirSync(folder), []);
  for (const name of ['../../../etc/passwd', '..%2f..%2fetc%2fpasswd', 'app.js/../../x']) {
    assert.ok((await ask(name, { method: 'GET' })).status >= 400, name);
  }
  const font = path.join(environment.source, 'README.md');
  const { words } = await work('render', { style: { ...style, font } });
  assert.equal(words.problems[0].path, '$.font');
  const pattern = path.join(environment.source, 'examples/styles/patterns/dots.png');
  const tiled = await work('render', { style: { ...style, effects: [{ type: 'pattern', pattern }] } });
  assert.equal(tiled.words.problems[0].path, '$.effects[0].pattern');
});

test('saves what it was given, and asks where a file is another by now', async () => {
  const save = (version) => ask('save', { body: JSON.stringify({ name: 'title.json', style, version }) });
  const { version } = JSON.parse((await save('')).body);
  assert.deepEqual(JSON.parse(fs.readFileSync(path.join(folder, 'title.json'))), style);
  fs.appendFileSync(path.join(folder, 'title.json'), '\n');
  assert.equal((await save(version)).status, 409);
  assert.equal((await save('')).status, 409);
});

test('large and slow requests cost nobody else anything', async () => {
  const large = { headers: { 'Content-Length': 1e9 }, body: '{}' };
  assert.equal((await ask('render', large).catch(() => ({ status: 413 }))).status, 413);
  assert.equal((await ask('watch', { body: JSON.stringify({ name: 'x'.repeat(3 << 20) }) })).status, 413);
  const stalled = Array.from({ length: 50 }, () => {
    const socket = net.connect(studio.port, '127.0.0.1');
    socket.on('error', () => {});
    socket.write(`POST / HTTP/1.1\r\nHost: 127.0.0.1:${studio.port}\r\nContent-Le`);
    return socket;
  });
  assert.equal((await work('render', { style })).words.width > 0, true);
  for (const socket of stalled) socket.destroy();
});

test('a hostile file costs its picture alone', async () => {
  const drop = (name, body) => ask(`font?name=${name}`, { body, headers: { 'Content-Type': 'application/octet-stream' } });
  const font = fs.readFileSync('/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf');
  for (const bytes of [Buffer.from('no font'), font.subarray(0, 5000), Buffer.alloc(0)]) {
    const { body } = await drop('hostile.ttf', bytes);
    const words = JSON.parse(body);
    if (!words.problems) assert.ok((await work('render', { style: { ...style, font: words.name } })).words);
  }
  const good = JSON.parse((await drop('own.ttf', font)).body);
  assert.equal(good.family, 'DejaVu Sans');
  const drawn = await work('render', { style: { ...style, font: good.name } });
  assert.equal(drawn.words.fonts[0].family, 'DejaVu Sans');
});

test('what dies is followed by another, at the same address', async () => {
  const before = (await work('file', { style })).picture;
  const server = serverProcess();
  for (const pid of workers()) process.kill(pid, 'SIGKILL');
  // The first request may be the one that is lost.
  await ask('file', { body: JSON.stringify({ style }) });
  assert.deepEqual((await work('file', { style })).picture, before);
  process.kill(server, 'SIGKILL');
  while (serverProcess() === undefined || serverProcess() === server) await new Promise((done) => setTimeout(done, 20));
  assert.deepEqual((await work('file', { style })).picture, before);
});

test('requests of random bytes', async () => {
  const server = serverProcess();
  const root = new URL(studio.address).pathname;
  let seed = Number(process.env.GXTEXT_TEST_SEED ?? 1);
  const random = (limit) => {
    seed = (seed * 1103515245 + 12345) % 2147483648;
    return Math.floor((seed / 2147483648) * limit);
  };
  const names = ['render', 'file', 'check', 'import', 'save', 'open', 'watch', 'close', 'remember', 'session', 'font?name=x.ttf'];
  for (let i = 0; i < Number(process.env.GXTEXT_STUDIO_FUZZ ?? 300); i++) {
    const json = Buffer.from(JSON.stringify({ name: 'x.json', style, text: '{}', version: '', page: '1', scale: 1 + random(3), fit: [random(9), 50] }));
    for (let j = random(4); j > 0; j--) json[random(json.length)] = random(256);
    const body = random(3) === 0 ? json.subarray(0, random(json.length)) : json;
    if (random(4) > 0) {
      await ask(names[random(names.length)], { body }).catch(() => {});
      continue;
    }
    const raw = Buffer.from(`POST ${root}render HTTP/1.1\r\nHost: 127.0.0.1:${studio.port}\r\nContent-Length: ${body.length}\r\n\r\n`);
    for (let j = random(6); j > 0; j--) raw[random(raw.length)] = random(256);
    await new Promise((done) => {
      const socket = net.connect(studio.port, '127.0.0.1', () => socket.end(Buffer.concat([raw, body])));
      socket.on('error', done).on('close', done).resume();
    });
  }
  assert.equal(serverProcess(), server);
  assert.ok((await work('render', { style })).words.width > 0);
});

const renders = Number(process.env.GXTEXT_STUDIO_RENDERS ?? 1500);

test('memory stays flat', { skip: renders === 0 && 'what is freed is kept by the sanitizer' }, async () => {
  const megabytes = () =>
    [serverProcess(), ...workers()].reduce((sum, pid) => sum + Number(/VmRSS:\s+(\d+)/.exec(fs.readFileSync(`/proc/${pid}/status`, 'utf8'))[1]) / 1024, 0);
  const draw = async (from, to) => {
    for (let i = from; i < to; i++) await work('render', { style: { ...style, size: 20 + (i % 40), text: `Title ${i % 50}` } });
  };
  await draw(0, renders / 3);
  const before = megabytes();
  await draw(renders / 3, renders);
  console.log(`memory after ${Math.round(renders / 3)} renders: ${before.toFixed(1)} MB, after ${renders}: ${megabytes().toFixed(1)} MB`);
  assert.ok(megabytes() < before * 1.2 + 8);
});

// The layers of a layered picture, or why there are none, from a studio in another environment.
async function layersOf(environment, body) {
  const own = await Studio.start(folder, { environment });
  const answer = JSON.parse((await ask('layers?name=title.psd', { body, headers: { 'Content-Type': 'application/octet-stream' } }, own)).body);
  await own.stop();
  return answer.layers ?? answer.problems[0].reason;
}

test('a reader of layered pictures that is not there, or is another program, costs no more than a picture', async () => {
  assert.match(await layersOf({ VIRTUAL_ENV: '', PYTHONPATH: '' }, 'picture'), /pip install 'gxtext\[psd\]'/);
  const bin = path.join(folder, 'other', 'bin');
  fs.mkdirSync(bin, { recursive: true });
  const printing = async (script) => {
    fs.writeFileSync(path.join(bin, 'python3'), `#!/bin/sh\n${script}\n`, { mode: 0o755 });
    return layersOf({ VIRTUAL_ENV: path.dirname(bin) }, 'picture');
  };
  assert.match(await printing('exec yes'), /too large/);
  assert.match(await printing('echo "[{}]"'), /printed something else/);
  assert.match(await printing(`echo '[{"name": "a", "style": {"size": 0}, "losses": []}]'`), /range/);
  assert.equal(await printing('echo "Traceback" >&2; echo "$4: no picture" >&2; exit 1'), 'no picture');
});

test('the text layers of a picture, the topmost first', { skip: !environment.hasLayerReader && 'the Python package is not built' }, async () => {
  const file = fs.readFileSync(path.join(environment.source, 'python/tests/psd/title.psd'));
  const layers = await layersOf({}, file);
  assert.deepEqual(layers.map((layer) => layer.name), ['Plain', 'Gold']);
  assert.equal(layers[1].style.text, 'Golden\nhour');
  assert.match(await layersOf({}, file.subarray(0, 5000)), /^not readable as a layered picture/);
});

test('the fonts are those of the command line', async () => {
  const fonts = ['DejaVuSans.ttf', 'DejaVuSerif.ttf'].map((name) => `/usr/share/fonts/truetype/dejavu/${name}`);
  const own = await Studio.start(folder, ...fonts.flatMap((file) => ['--fonts', file]));
  const { families } = JSON.parse((await ask('session', {}, own)).body);
  await own.stop();
  assert.deepEqual(families, ['DejaVu Sans', 'DejaVu Serif']);
  await assert.rejects(Studio.start(folder, '--fonts', path.join(folder, 'nowhere')), /nowhere/);
});

test('ends by itself, and at once when it is told', async () => {
  const idle = await Studio.start(folder, '--idle', '1');
  assert.deepEqual(await idle.ended, { code: 0, signal: null });
  const temporary = fs.mkdtempSync(path.join(os.tmpdir(), 'studio-test-'));
  const sessions = () => fs.readdirSync(temporary).length;
  const stopped = await Studio.start(folder, { environment: { TMPDIR: temporary } });
  assert.equal(sessions(), 1);
  stopped.process.kill('SIGINT');
  assert.deepEqual(await stopped.ended, { code: 0, signal: null });
  assert.equal(sessions(), 0);
  fs.rmdirSync(temporary);
});
