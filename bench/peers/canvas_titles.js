// The measured titles as Skia draws them, built by Clang, through a canvas of the web's kind.
//   node canvas_titles.js FOLDER_OF_MODULES [kept]
// With "kept" on canvases that are kept from run to run, and with blurs that Skia finds in its
// caches; otherwise on new ones, the blurs a trifle different each time, so that they are done.
'use strict';

const fs = require('fs');
const path = require('path');
const readline = require('readline');

const modules = process.argv[2];
const kept = process.argv[3] === 'kept';
const {createCanvas, GlobalFonts, Image} = require(path.join(modules, '@napi-rs/canvas'));
const {version} = require(path.join(modules, '@napi-rs/canvas/package.json'));

const css = (paint) =>
    `rgba(${paint.slice(0, 3).map((c) => Math.round(255 * c)).join(',')},${paint[3]})`;
const isUnder = (layer) => ['shadow', 'glow', 'stroke'].includes(layer.kind);

class Title {
  constructor(job) {
    this.job = job;
    if (!GlobalFonts.registerFromPath(job.font)) throw new Error('cannot open the font');
    this.font = `${job.weight} ${job.size}px "${job.family}"`;
    this.tiles = {};
    for (const layer of job.layers) {
      if (layer.kind !== 'pattern') continue;
      const image = new Image();
      image.src = fs.readFileSync(layer.pattern);
      this.tiles[layer.pattern] = image;
    }
    this.contexts = {};
    this.runs = 0;
  }

  newContext() {
    const context = createCanvas(this.job.width, this.job.height).getContext('2d');
    context.font = this.font;
    context.textBaseline = 'alphabetic';
    context.textAlign = 'left';
    context.lineJoin = 'round';
    return context;
  }

  // An empty one; `role` tells those of a picture apart.
  context(role) {
    if (!kept || !this.contexts[role]) this.contexts[role] = this.newContext();
    const context = this.contexts[role];
    if (kept) {
      context.globalCompositeOperation = 'source-over';
      context.clearRect(0, 0, this.job.width, this.job.height);
    }
    return context;
  }

  deviation(layer) {
    return layer.deviation * (1 + (kept ? 0 : 1e-6 * this.runs));
  }

  fill(context, style, dx = 0, dy = 0) {
    context.fillStyle = style;
    for (const line of this.job.lines) context.fillText(line.text, line.x + dx, line.baseline + dy);
  }

  outline(context, style, width, dx = 0) {
    context.strokeStyle = style;
    context.lineWidth = 2 * width;
    for (const line of this.job.lines) context.strokeText(line.text, line.x + dx, line.baseline);
  }

  // A shadow alone: the text is drawn beside the picture, its shadow into it.
  cast(context, layer, shift, draw) {
    const beside = 2 * this.job.width;
    context.shadowColor = css(layer.paint);
    context.shadowBlur = 2 * this.deviation(layer);
    context.shadowOffsetX = shift[0] + beside;
    context.shadowOffsetY = shift[1];
    draw(-beside);
    context.shadowColor = 'rgba(0,0,0,0)';
  }

  // What surrounds the text, blurred, within it.
  inside(context, layer) {
    const around = this.context('around');
    around.fillStyle = '#000';
    around.fillRect(0, 0, this.job.width, this.job.height);
    around.globalCompositeOperation = 'destination-out';
    this.fill(around, '#000', layer.shift[0], layer.shift[1]);
    const glow = this.context('glow');
    this.fill(glow, '#000');
    glow.globalCompositeOperation = 'source-in';
    glow.filter = `blur(${this.deviation(layer)}px)`;
    glow.drawImage(around.canvas, 0, 0);
    glow.filter = 'none';
    glow.fillStyle = css(layer.paint);
    glow.fillRect(0, 0, this.job.width, this.job.height);
    context.drawImage(glow.canvas, 0, 0);
  }

  style(context, layer) {
    if (layer.kind === 'pattern') return context.createPattern(this.tiles[layer.pattern], 'repeat');
    const [from, to] = [layer.from, layer.to];
    const gradient = layer.kind === 'linear' ?
        context.createLinearGradient(from[0], from[1], to[0], to[1]) :
        context.createRadialGradient(from[0], from[1], 0, from[0], from[1], layer.width);
    for (const [position, paint] of layer.stops) gradient.addColorStop(position, css(paint));
    return gradient;
  }

  add(context, layer) {
    switch (layer.kind) {
      case 'shadow':
        return this.cast(context, layer, layer.shift, (dx) => this.fill(context, '#000', dx));
      case 'glow':
        return this.cast(context, layer, [0, 0], (dx) => this.outline(context, '#000', layer.width, dx));
      case 'stroke':
        return this.outline(context, css(layer.paint), layer.width);
      case 'innerGlow':
      case 'innerShadow':
        return this.inside(context, layer);
      default:
        context.globalAlpha = layer.kind === 'pattern' ? layer.opacity : 1;
        this.fill(context, this.style(context, layer));
        context.globalAlpha = 1;
    }
  }

  draw() {
    const context = this.context('picture');
    const layers = this.job.layers;
    ++this.runs;
    for (const layer of layers.filter(isUnder)) this.add(context, layer);
    this.fill(context, css(this.job.paint));
    for (const layer of layers.filter((layer) => !isUnder(layer))) this.add(context, layer);
    return context.getImageData(0, 0, this.job.width, this.job.height).data;
  }

  seconds(atLeast) {
    this.draw();
    const taken = [];
    const start = process.hrtime.bigint();
    for (let before = start; Number(before - start) < 1e9 * atLeast;) {
      this.draw();
      const now = process.hrtime.bigint();
      taken.push(Number(now - before) / 1e9);
      before = now;
    }
    taken.sort((a, b) => a - b);
    return taken[taken.length >> 1];
  }
}

let title = null;

function answer(question) {
  if ('prepare' in question) {
    title = new Title(question.prepare);
    title.draw();
    return {ready: `Skia by Clang (canvas ${version}${kept ? ', kept' : ''})`,
      note: kept ? 'on a kept surface, blurs from its caches' : ''};
  }
  if ('time' in question) return {seconds: title.seconds(question.time)};
  fs.writeFileSync(question.save, title.contexts.picture.canvas.toBuffer('image/png'));
  return {saved: true};
}

readline.createInterface({input: process.stdin}).on('line', (line) => {
  let said;
  try {
    said = answer(JSON.parse(line));
  } catch (error) {
    said = {missing: String(error)};
  }
  process.stdout.write(JSON.stringify(said) + '\n');
});
