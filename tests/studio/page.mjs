// The page of the studio, used as a designer uses it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';
import { Studio, assertLooks, assertShown, drawWithProgram, environment, joined, require, startBrowser } from './studio.mjs';

const WIDE = { width: 1280, height: 800 };
const TABLET = { width: 834, height: 1112 };
const gallery = path.join(environment.source, 'examples/styles/gallery');
let browser, studio, folder, context, page;

before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());
beforeEach(async () => {
  folder = fs.mkdtempSync(path.join(os.tmpdir(), 'studio-page-'));
  studio = undefined;
});
afterEach(async () => {
  await context?.close();
  await studio?.stop();
  fs.rmSync(folder, { recursive: true });
});

// `prepare` is called with the page before there is anything on it.
async function open(file, viewport = WIDE, { prepare = () => {}, ...more } = {}) {
  studio = await Studio.start(folder, ...(file ? [file] : []));
  context = await browser.newContext({ viewport, acceptDownloads: true, permissions: ['clipboard-read', 'clipboard-write'], ...more });
  page = await context.newPage();
  page.setDefaultTimeout(60_000);
  await prepare(page);
  page.on('pageerror', (error) => assert.fail(error));
  page.on('request', (request) => assert.ok(request.url().startsWith(studio.address) || /^(data|blob):/.test(request.url()), request.url()));
  await page.goto(studio.address);
  await page.locator('.picture canvas').first().waitFor();
  // The list of files, which comes by itself.
  if (file) await button('With a file').waitFor();
  await settled();
}

// At one stroke: half a file is never seen.
function write(name, style) {
  const half = path.join(folder, `.${name}.half`);
  fs.writeFileSync(half, JSON.stringify(style));
  fs.renameSync(half, path.join(folder, name));
}
const read = (name) => JSON.parse(fs.readFileSync(path.join(folder, name)));
const control = (place, selector = 'input') => page.locator(`[data-path="${place}"] ${selector}`);
const button = (name, exact = true) => page.getByRole('button', { name, exact });

async function add(effect) {
  await button('Add effect').click();
  await page.getByRole('menuitem', { name: effect }).click();
}

// Saves, under another name if one is given, and waits for it.
async function save(name) {
  if (name) {
    await button('Save as').click();
    await page.getByRole('textbox', { name: /File name/ }).fill(name);
    await page.keyboard.press('Enter');
    await page.locator('.file-name', { hasText: name }).waitFor();
  } else {
    await page.keyboard.press('Control+s');
  }
  await page.locator('.file-name em').waitFor({ state: 'detached' });
}

// The picture that is shown is the one that the program draws of the file.
async function assertSame(name) {
  await settled();
  await assertShown(page, drawWithProgram(path.join(folder, name)));
}

// Until every preset is of the text and the font that are chosen.
async function presetsDrawn() {
  await page.locator('.presets[aria-busy=false]').waitFor();
  assert.equal(await page.locator('.preset canvas').count(), await page.locator('.preset').count());
}

// Until nothing is being drawn, and what was is on the page.
async function settled() {
  await page.locator('.room[aria-busy=false]').waitFor();
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
}

async function dropFile(target, file) {
  const bytes = fs.readFileSync(file).toString('base64');
  const transfer = await page.evaluateHandle(({ bytes, name }) => {
    const transfer = new DataTransfer();
    transfer.items.add(new File([Uint8Array.from(atob(bytes), (c) => c.charCodeAt(0))], name));
    return transfer;
  }, { bytes, name: path.basename(file) });
  await target.dispatchEvent('dragover', { dataTransfer: transfer });
  await target.dispatchEvent('drop', { dataTransfer: transfer });
}

test('own text, own font, a preset: and the file draws what was shown', async () => {
  await open();
  await page.getByRole('textbox', { name: 'Text to draw' }).fill('Καλημέρα مرحبا');
  const search = page.getByRole('combobox', { name: 'Search fonts' });
  await search.fill('dejavu ser');
  await page.getByRole('option').first().waitFor();
  await page.keyboard.press('Enter');
  const preset = button('Begin with chiselled gold');
  await preset.locator('canvas').waitFor();
  await preset.click();
  await save('gold.json');
  assert.equal(read('gold.json').font, 'DejaVu Serif');
  assert.equal(read('gold.json').text, 'Καλημέρα مرحبا');
  await assertSame('gold.json');
  // Opened again it is the same, to the byte.
  const bytes = fs.readFileSync(path.join(folder, 'gold.json'));
  await page.reload();
  await button('Open').click();
  await button('gold.json').click();
  await assertSame('gold.json');
  await save('again.json');
  assert.deepEqual(fs.readFileSync(path.join(folder, 'again.json')), bytes);
});

test('layers by mouse and by keyboard, and every step back', async () => {
  write('plain.json', { text: 'Layers', size: 90 });
  await open('plain.json');
  const names = () => page.locator('.layer .title').allTextContents();
  await add('Stroke');
  await add('Outer shadow');
  await page.waitForFunction(() => document.querySelector('.layer .title')?.textContent === 'Stroke');
  await page.locator('.layer', { hasText: 'Stroke' }).getByRole('button', { name: 'Duplicate' }).click();
  await control('$.effects[1].size', 'input[type=number]').fill('9');
  await page.getByRole('textbox', { name: 'Colour, #RRGGBB or #AARRGGBB' }).last().fill('#C02020');
  await settled();
  assert.deepEqual(await names(), ['Stroke', 'Stroke', 'Outer shadow']);
  // The shadow to the top, by keyboard, faster than pictures come, and back down with the mouse.
  await page.locator('.layer .title').last().focus();
  await page.evaluate(() => {
    const press = () => document.activeElement.dispatchEvent(new KeyboardEvent('keydown', { key: 'ArrowUp', altKey: true, bubbles: true }));
    press();
    setTimeout(press);
  });
  await settled();
  assert.deepEqual(await names(), ['Outer shadow', 'Stroke', 'Stroke']);
  await page.locator('.layer').first().dragTo(page.locator('.layer').last());
  await settled();
  assert.deepEqual(await names(), ['Stroke', 'Stroke', 'Outer shadow']);
  await page.locator('.layer').first().getByRole('checkbox').click();
  await save();
  const saved = read('plain.json');
  assert.equal(saved.order, 'listed');
  assert.deepEqual(saved.effects.map((effect) => [effect.type, effect.enabled ?? true]), [['outerShadow', true], ['stroke', true], ['stroke', false]]);
  await assertSame('plain.json');
  await page.locator('.layer .title').first().focus();
  await page.keyboard.press('Delete');
  assert.equal((await names()).length, 2);
  while (await button('Undo').isEnabled()) await page.keyboard.press('Control+z');
  await settled();
  assert.deepEqual(await names(), []);
  while (await button('Redo').isEnabled()) await page.keyboard.press('Control+y');
  await settled();
  assert.equal((await names()).length, 2);
});

test('by keyboard alone', async () => {
  await open();
  const press = async (...keys) => {
    for (const key of keys) await page.keyboard.press(key);
  };
  const focused = () => page.evaluate(() => document.activeElement.getAttribute('aria-label') ?? document.activeElement.textContent);
  const tabTo = async (name, key = 'Tab') => {
    for (let stops = 0; stops < 30; stops++) {
      await press(key);
      if (name.test(await focused())) return;
    }
    assert.fail(`${name} is more than 30 stops away`);
  };
  await tabTo(/Text to draw/);
  await press('Control+a');
  await page.keyboard.insertText('Keys');
  await tabTo(/Begin with/);
  await press('End', 'Home', 'ArrowRight', 'ArrowDown');
  assert.equal(await focused(), 'Begin with candy');
  await press('g', 'g', 'g', 'g', 'Enter');
  await tabTo(/Add effect/);
  await press('Enter', 'End', 'i', 'i', 'Enter');
  await page.waitForFunction(() => document.activeElement.textContent === 'Inner glow');
  await press('Alt+ArrowDown', 'Space');
  await tabTo(/Size/);
  await press('ArrowRight', 'Shift+ArrowRight', 'Control+s');
  await page.getByRole('dialog').waitFor();
  await press('Control+a');
  await page.keyboard.insertText('keys');
  await press('Enter');
  await page.getByText(/^Saved/).waitFor();
  assert.equal(await focused(), 'Size', 'the focus is where it was');
  const saved = read('keys.json');
  assert.equal(saved.text, 'Keys');
  assert.deepEqual(saved.effects.find((effect) => effect.type === 'innerGlow'), { type: 'innerGlow', enabled: false, size: 16 });
  await assertSame('keys.json');
});

test('every kind of control writes what it shows', async () => {
  write('all.json', { text: 'Dials', size: 80, effects: [{ type: 'outerShadow' }, { type: 'linearGradient', stops: [{ color: '#FF0000', position: 0 }, { color: '#0000FF', position: 1 }] }, { type: 'stroke' }] });
  await open('all.json');
  await page.locator('.layer .title', { hasText: 'Outer shadow' }).click();
  await control('$.effects[0].distance', 'input[type=range]').focus();
  for (let i = 0; i < 3; i++) await page.keyboard.press('ArrowRight');
  await control('$.effects[0].size', 'input[type=range]').fill('500');
  const dial = page.getByRole('slider', { name: 'Angle' });
  const box = await dial.boundingBox();
  await page.mouse.move(box.x + box.width / 2, box.y + 4);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width - 3, box.y + box.height / 2, { steps: 5 });
  await page.mouse.up();
  await page.locator('.layer .title', { hasText: 'Linear gradient' }).click();
  const bar = await page.locator('.paint').boundingBox();
  await page.mouse.click(bar.x + bar.width / 2, bar.y + 8);
  await control('$.effects[1].stops[1].color', '.hex').fill('#80FFFF00');
  await page.locator('.layer .title', { hasText: 'Stroke' }).click();
  await page.getByRole('combobox', { name: 'Fill' }).selectOption('pattern');
  await dropFile(page.locator('.of-file .drop'), path.join(environment.source, 'examples/styles/patterns/bricks.png'));
  await page.getByText('bricks.png', { exact: true }).waitFor();
  await save();
  const { effects } = read('all.json');
  assert.deepEqual(effects[0], { type: 'outerShadow', angle: 0, distance: 8, size: 50 });
  assert.deepEqual(effects[1].stops[1], { color: '#80FFFF00', position: 0.5 });
  assert.equal(effects[2].fill.pattern, 'bricks.png');
  assert.ok(fs.existsSync(path.join(folder, 'bricks.png')));
  await assertSame('all.json');
  // A mistake is told where it was made, and the picture stays.
  await control('$.effects[2].size', 'input[type=number]').fill('140');
  await page.locator('[data-path="$.effects[2].size"] [role=alert]', { hasText: '0-100' }).waitFor();
  await page.getByText('The picture is the last one that could be drawn.').waitFor();
  await assertSame('all.json');
  // A number is typed over without the default getting in between.
  await control('$.effects[2].size', 'input[type=number]').fill('');
  await control('$.effects[2].size', 'input[type=number]').pressSequentially('7');
  await save();
  assert.equal(read('all.json').effects[2].size, 7);
  await page.locator('[data-path="$.effects[2].size"] .name').dblclick();
  await settled();
  assert.equal(await control('$.effects[2].size', 'input[type=number]').inputValue(), '2');
});

test('a dropped font with its variations', async () => {
  const font = execFileSync('fc-match', ['-f', '%{file}', 'Inter:variable=true']).toString();
  await open();
  await dropFile(page.locator('.font .drop'), font);
  const weight = page.getByRole('slider', { name: 'Weight' });
  await weight.fill('800');
  await page.getByRole('textbox', { name: 'Text to draw' }).fill('Weight 日 \u{16A40}');
  await page.getByText(/Other letters come from .*CJK/).waitFor();
  await save('own.json');
  assert.equal(read('own.json').font, path.basename(font));
  assert.match(read('own.json').fontVariations, /'wght' 800/);
  assert.deepEqual(fs.readFileSync(path.join(folder, path.basename(font))), fs.readFileSync(font));
  await assertSame('own.json');
});

test('characters that no font has are named', async () => {
  await open();
  await page.getByRole('textbox', { name: 'Text to draw' }).fill('A\u{1E6C0}');
  await page.getByText(/No installed font has U\+1E6C0/).waitFor();
});

test('backdrops, zoom to pixels, overlays and a phone', async () => {
  write('one.json', { text: 'Il', size: 40, padding: 8, color: '#123456', effects: [{ type: 'outerGlow' }] });
  await open('one.json');
  for (const name of ['Light', 'Dark', 'Colour', 'Photo', 'Checker']) {
    await button(name).click();
    await page.locator(`.room.${name === 'Colour' ? 'color' : name.toLowerCase()}`).waitFor();
  }
  await page.getByLabel('Zoom').selectOption('16');
  await page.locator('.grid').waitFor();
  const canvas = await page.locator('.picture canvas').boundingBox();
  const png = drawWithProgram(path.join(folder, 'one.json'));
  assert.equal(canvas.width, 16 * png.readUInt32BE(16));
  await page.locator('.picture').hover({ position: { x: 16 * 3 + 2, y: 16 * 4 + 2 } });
  assert.match(await page.locator('.pixel').textContent(), /^3, 4 {2}#[0-9A-F]{8}$/);
  for (const name of ['Margins', 'Lines', 'Ink']) await button(name).click();
  assert.equal(await page.locator('.overlays rect').count(), 3);
  await page.getByLabel('Phone').selectOption('3');
  await settled();
  await assertShown(page, drawWithProgram(path.join(folder, 'one.json'), '--scale', '3'));
});

test('nothing is lost by a reload, a crash of the server, or another editor', async () => {
  write('kept.json', { text: 'Kept', size: 60 });
  await open('kept.json');
  const text = page.getByRole('textbox', { name: 'Text to draw' });
  await text.fill('Changed');
  await page.reload();
  assert.equal(await text.inputValue(), 'Changed');
  // Beside the file, too, for another browser.
  while (!fs.existsSync(path.join(folder, '.kept.json.studio'))) await page.waitForTimeout(50);
  assert.equal(read('.kept.json.studio').text, 'Changed');
  const other = await (await browser.newContext()).newPage();
  await other.goto(studio.address);
  await other.getByText('Changes that were not saved are here again.').waitFor();
  assert.equal(await other.getByRole('textbox', { name: 'Text to draw' }).inputValue(), 'Changed');
  await other.context().close();
  const children = fs.readFileSync(`/proc/${studio.process.pid}/task/${studio.process.pid}/children`, 'utf8').trim().split(' ');
  for (const pid of children) process.kill(Number(pid), 'SIGKILL');
  await text.fill('After the crash');
  await settled();
  await page.locator('.lost').waitFor({ state: 'detached' });
  await save();
  while (fs.existsSync(path.join(folder, '.kept.json.studio'))) await page.waitForTimeout(50);
  await assertSame('kept.json');
  // An editor saves: shown at once.
  write('kept.json', { text: 'Edited', size: 60 });
  await page.waitForFunction(() => document.querySelector('textarea').value === 'Edited');
  await assertSame('kept.json');
  // Changed in both places: asked.
  await text.fill('Mine');
  write('kept.json', { text: 'Theirs', size: 60 });
  await page.getByRole('dialog').waitFor();
  await button('Keep mine').click();
  await page.getByText(/^Saved/).waitFor();
  assert.equal(read('kept.json').text, 'Mine');
  await text.fill('Mine again');
  write('kept.json', { text: 'Theirs again', size: 60 });
  await button('Load the file').click();
  await page.waitForFunction(() => document.querySelector('textarea').value === 'Theirs again');
  // Another file in the way of a name is not taken for it.
  write('other.json', { text: 'Other' });
  await button('Save as').click();
  await page.getByRole('textbox', { name: /File name/ }).fill('other.json');
  await page.keyboard.press('Enter');
  await page.getByText('other.json exists already.').waitFor();
  await page.keyboard.press('Escape');
  assert.equal(read('other.json').text, 'Other');
  await page.getByText('kept.json', { exact: true }).waitFor();
  await studio.stop();
  await page.locator('.lost').waitFor();
});

test('what comes late costs nothing', async () => {
  write('late.json', { text: 'Late', size: 60, effects: [{ type: 'stroke' }] });
  // Frames half a second late: the picture comes before the first, and says which layer is chosen.
  const prepare = () => page.addInitScript(() => {
    const later = setTimeout;
    window.requestAnimationFrame = (call) => later(() => call(performance.now()), 500);
    window.setTimeout = (call, time, ...all) => later(call, Math.max(time ?? 0, 500), ...all);
  });
  await open('late.json', WIDE, { prepare });
  await page.locator('.layer.selected').waitFor();
  await context.close();
  await studio.stop();
  await open('late.json');
  const text = page.getByRole('textbox', { name: 'Text to draw' });
  const nextLook = () => page.waitForResponse((response) => response.url().endsWith('/watch'));
  const dialogs = () => page.getByRole('dialog').count();
  // The answer to a save, behind two looks at the file that it wrote: edits meanwhile are kept.
  await page.route('**/save', async (route) => {
    const response = await route.fetch();
    await text.fill('Edited while saved');
    await nextLook();
    await nextLook();
    assert.equal(await dialogs(), 0);
    await route.fulfill({ response });
  });
  await text.fill('Saved');
  await page.keyboard.press('Control+s');
  await page.getByText('Saved late.json').waitFor();
  assert.equal(read('late.json').text, 'Saved');
  await page.reload();
  assert.equal(await text.inputValue(), 'Edited while saved');
  await page.unroute('**/save');
  await save();
  // Another editor's file, behind an edit: asked.
  await page.route('**/open', async (route) => {
    await text.fill('Mine');
    await route.continue();
  });
  write('late.json', { text: 'Theirs', size: 60 });
  await button('Keep mine').click();
  await page.locator('.file-name em').waitFor({ state: 'detached' });
  assert.equal(read('late.json').text, 'Mine');
});

test('imports layer effects and tells what is lost', async () => {
  const effects = path.join(folder, 'layer.json.txt');
  fs.writeFileSync(effects, JSON.stringify({ stroke: [{ enabled: true, size: { units: 'Pixels', value: 7 }, position: 'outside', fillType: 'color', color: { r: 10, g: 20, b: 30 } }], satin: { enabled: true } }));
  await open();
  await button('Import').click();
  await dropFile(page.locator('dialog .drop'), effects);
  await page.locator('.losses').getByText('$.satin').waitFor();
  await button('Use it').click();
  await save('imported.json');
  assert.equal(read('imported.json').effects[0].size, 7);
  await assertSame('imported.json');
  await page.keyboard.press('Control+z');
  await page.locator('.layer').waitFor({ state: 'detached' });
});

test('imports a text layer of a layered picture', { skip: !environment.hasLayerReader && 'the Python package is not built' }, async () => {
  const file = path.join(environment.source, 'python/tests/psd/title.psd');
  await open(undefined, WIDE, { bypassCSP: true });
  await dropFile(page.locator('.room'), file);
  await page.getByRole('radio', { name: 'Gold' }).check();
  await page.locator('.losses').getByText('$.dropShadow[0].blendMode').waitFor();
  await assertAccessible('import');
  await button('Use it').click();
  await save('gold.json');
  execFileSync(process.env.GXTEXT_PYTHON, ['-m', 'gxtext.psd', file, '--out', folder], { stdio: 'ignore' });
  await assertSame('Gold.json');
  assert.deepEqual(read('gold.json'), read('Gold.json'));
});

test('exports pictures and code that draws them', async () => {
  const exported = path.join(environment.source, 'tests/studio/exported');
  fs.copyFileSync(path.join(exported, 'title.json'), path.join(folder, 'title.json'));
  await open('title.json');
  await button('Export').click();
  for (const [format, scale] of [['PNG', 1], ['PNG', 3], ['WebP', 2]]) {
    const [download] = await Promise.all([page.waitForEvent('download'), button(`${format} ${scale}×`).click()]);
    const expected = drawWithProgram(path.join(folder, 'title.json'), '--scale', String(scale), '--format', format.toLowerCase());
    assert.deepEqual(fs.readFileSync(await download.path()), expected);
  }
  const code = async (kind) => {
    await page.getByRole('group', { name: 'Code' }).getByRole('button', { name: kind, exact: true }).click();
    await button('Copy').and(page.locator(':enabled')).waitFor();
    return page.getByRole('textbox', { name: 'Code' }).inputValue();
  };
  const expected = drawWithProgram(path.join(folder, 'title.json'));
  const bin = path.dirname(environment.program);
  execFileSync('bash', ['-c', await code('Command line')], { cwd: folder, env: { ...process.env, PATH: `${bin}:${process.env.PATH}` } });
  assert.deepEqual(fs.readFileSync(path.join(folder, 'title.png')), expected);
  const json = JSON.parse(await code('JSON'));
  // What a Java string, a Kotlin string or a raw C++ string holds.
  const strings = (text) => [...text.matchAll(/"(?:[^"\\]|\\.)*"/g)].map(([literal]) => JSON.parse(literal.replaceAll('\\$', '$'))).join('');
  assert.deepEqual(JSON.parse(strings(await code('Java'))), json);
  assert.deepEqual(JSON.parse(strings(await code('Kotlin'))), json);
  // These are kept, compiled and run by other tests.
  for (const [kind, name] of [['C++', 'title.cpp'], ['Java', 'title.java'], ['Kotlin', 'title.kt']]) {
    const kept = path.join(exported, name);
    if (process.env.GXTEXT_UPDATE_GOLDEN) fs.writeFileSync(kept, await code(kind));
    assert.equal(await code(kind), fs.readFileSync(kept, 'utf8'));
  }
  fs.rmSync(path.join(folder, 'title.png'));
  execFileSync(process.env.GXTEXT_EXPORTED, { cwd: folder });
  assert.deepEqual(fs.readFileSync(path.join(folder, 'title.png')), expected);
  assert.deepEqual(JSON.parse(/r"""(.*)"""/s.exec(await code('Python'))[1]), json);
  if (process.env.GXTEXT_PYTHON) {
    fs.rmSync(path.join(folder, 'title.png'));
    execFileSync(process.env.GXTEXT_PYTHON, ['-c', await code('Python')], { cwd: folder });
    assert.deepEqual(fs.readFileSync(path.join(folder, 'title.png')), expected);
  }
  await button('Copy').click();
  assert.equal(await page.evaluate(() => navigator.clipboard.readText()), await code('Python'));
});

test('compares with a kept state and with a file', async () => {
  write('a.json', { text: 'Compare', size: 60 });
  write('b.json', { text: 'Compare', size: 60, effects: [{ type: 'outerShadow' }] });
  await open('a.json');
  await button('Keep this').click();
  const mode = page.getByRole('combobox', { name: 'Compare', exact: true });
  await mode.selectOption('difference');
  await page.getByText('The same, to the byte').waitFor();
  await button('With a file').click();
  await page.getByRole('menuitem', { name: 'b.json' }).click();
  await page.getByText(/[1-9]\d* pixels differ/).waitFor();
  await mode.selectOption('wipe');
  await page.getByRole('slider', { name: 'Where the wipe is' }).fill('0.3');
  await mode.selectOption('side');
  assert.equal(await page.locator('.pictures .picture').count(), 2);
});

// Of a page that was opened with `bypassCSP`.
async function assertAccessible(panel) {
  if (!(await page.evaluate(() => 'axe' in window))) await page.evaluate(fs.readFileSync(require.resolve('axe-core'), 'utf8'));
  const violations = await page.evaluate(async () => (await axe.run()).violations.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.target).join(', ')}`));
  assert.deepEqual(violations, [], panel);
}

// Every panel of the page, at one width: `visit` is called with the name of each as it is shown.
async function visitPanels(visit) {
  await visit('settings');
  await page.getByRole('tab', { name: 'Presets' }).click();
  await presetsDrawn();
  await visit('presets');
  for (const layer of await page.locator('.layer .title').all()) {
    await layer.click();
    await visit((await layer.textContent()).toLowerCase().replace(' ', '-'));
  }
  await page.getByRole('combobox', { name: 'Search fonts' }).fill('noto');
  await page.getByRole('option').first().waitFor();
  await visit('fonts');
  await page.keyboard.press('Escape');
  await button('Add effect').click();
  await visit('menu');
  await page.keyboard.press('Escape');
  await button('Keep this').click();
  await page.locator('.pictures figure').nth(1).waitFor();
  await visit('compare');
  for (const name of ['Open', 'Save as', 'Import', 'Export']) {
    await button(name).click();
    await page.getByRole('dialog').waitFor();
    if (name === 'Export') await button('Copy').and(page.locator(':enabled')).waitFor();
    await visit(name.toLowerCase().replace(' ', '-'));
    await page.keyboard.press('Escape');
    await page.getByRole('dialog').waitFor({ state: 'detached' });
  }
}

test('every panel is accessible, and looks as it did', async () => {
  const source = { text: 'Everybody', size: 80, background: '#80000000', effects: [{ type: 'outerShadow' }, { type: 'linearGradient', stops: [{ color: '#FF0000', position: 0 }, { color: '#0000FF', position: 1 }] }, { type: 'stroke', fill: '#FF0000' }, { type: 'bevel' }] };
  let panels = 0;
  for (const [viewport, colorScheme] of [[WIDE, 'light'], [TABLET, 'dark']]) {
    write('all.json', source);
    await open('all.json', viewport, { colorScheme, bypassCSP: true, reducedMotion: 'reduce' });
    const shots = [];
    await visitPanels(async (panel) => {
      await settled();
      await assertAccessible(panel);
      shots.push((await page.screenshot({ path: path.join(environment.output, `${panel}-${colorScheme}.png`) })).toString('base64'));
      panels++;
    });
    assert.equal(await page.getByText('unsaved').count(), 0, 'looking changes nothing');
    await assertLooks(page, shots, `studio-${colorScheme}.png`);
    await context.close();
    await studio.stop();
    context = studio = undefined;
  }
  console.log(`accessibility: ${panels} panels, no violation`);
  assert.ok(!process.env.GXTEXT_UPDATE_GOLDEN, 'the golden sheets are written anew: look at them');
});

test('a style from its first letter to its file, in pictures', async () => {
  const pictures = [];
  const take = async () => {
    await settled();
    pictures.push((await page.screenshot()).toString('base64'));
  };
  await open();
  await page.getByRole('textbox', { name: 'Text to draw' }).fill('Golden hour');
  await page.getByRole('combobox', { name: 'Search fonts' }).fill('DejaVu Serif');
  await page.keyboard.press('Enter');
  await presetsDrawn();
  await take();
  await button('Begin with gold').click();
  await page.locator('.layer .title', { hasText: 'Linear gradient' }).click();
  await take();
  await button('Keep this').click();
  await add('Outer glow');
  await control('$.effects[4].color', '.hex').fill('#FF8000');
  await control('$.effects[4].size', 'input[type=number]').fill('24');
  await page.getByRole('combobox', { name: 'Compare', exact: true }).selectOption('side');
  await take();
  const steps = await joined(page, pictures, 480);
  const places = { 'studio.png': Buffer.from(pictures[1], 'base64'), 'studio-steps.png': steps };
  for (const [name, bytes] of Object.entries(places)) {
    fs.writeFileSync(path.join(environment.output, name), bytes);
    if (process.env.GXTEXT_UPDATE_GOLDEN) fs.writeFileSync(path.join(environment.source, 'docs/pictures', name), bytes);
  }
  await save('golden-hour.json');
  assert.deepEqual(read('golden-hour.json').effects[4], { type: 'outerGlow', size: 24, color: '#FF8000' });
});

test('a change shows soon', async () => {
  write('title.json', { text: 'Summer Nights', font: 'DejaVu Sans', bold: true, size: 96, width: 900, align: 'center', padding: [0, 20, 0, 20], effects: [{ type: 'outerShadow', distance: 8, size: 12 }, { type: 'outerGlow', size: 12 }, { type: 'stroke', size: 5 }] });
  await open('title.json');
  await page.locator('.layer .title').first().click();
  await page.evaluate(() => {
    window.times = [];
    let started = 0;
    addEventListener('keydown', (event) => (started = event.timeStamp), true);
    const put = CanvasRenderingContext2D.prototype.putImageData;
    CanvasRenderingContext2D.prototype.putImageData = function (...all) {
      put.apply(this, all);
      // After the frame that shows it.
      requestAnimationFrame(() => {
        const channel = new MessageChannel();
        channel.port1.onmessage = () => window.times.push(performance.now() - started);
        channel.port2.postMessage(0);
      });
    };
  });
  await control('$.effects[2].size', 'input[type=range]').focus();
  const rounds = Number(process.env.GXTEXT_STUDIO_CHANGES ?? 12);
  for (let i = 0; i < rounds; i++) {
    await page.keyboard.press(i % 2 ? 'ArrowLeft' : 'ArrowRight');
    await page.waitForFunction((count) => window.times.length >= count, i + 1);
  }
  const times = (await page.evaluate(() => window.times)).sort((a, b) => a - b);
  const size = await page.locator('.picture canvas').evaluate((canvas) => `${canvas.width} x ${canvas.height}`);
  console.log(`latency of ${rounds} changes to ${size}: median ${times[Math.floor(rounds / 2)].toFixed(1)} ms, p95 ${times[Math.floor(rounds * 0.95)].toFixed(1)} ms`);
});
