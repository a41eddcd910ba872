// Draws on unpremultiplied RGBA canvases. Standard input holds jobs, each two pictures of 256 x 256
// pixels, source and target. For each job two pictures go to standard output: the source drawn over
// the target as a bitmap, and the target with a rectangle in each tile of 8 x 8 pixels. The tile's
// first source pixel is the rectangle's colour, the next two its edges from the tile's corner, as
// signed sixteenths of a pixel; it is clipped to the tile. Then come masks of one byte per pixel:
// letters of the font on a clear mask, and on one of the first bytes of the first source; an
// emoji at the sizes, stretches and slants of PICTURES. Last, for a letter at PLACES by
// PLACES positions around a pixel, a 64th of a pixel apart, without and with subpixel positions: which
// position was the first to give the same picture, as 16 bits.
'use strict';
const SIZE = 256, TILE = 8, BYTES = 4 * SIZE * SIZE;
const PLACES = 81;
const PICTURES = [[6, 1, 0], [24, 1, 0], [40, 1, 0], [64, 0.5, 0], [109, 1, 0], [150, 1, 0], [90, 1, -0.25]];
const [, , kitPath, fontPath, emojiPath] = process.argv;

require(kitPath)().then((kit) => {
  const input = require('fs').readFileSync(0);
  const info = {
    width: SIZE, height: SIZE, colorType: kit.ColorType.RGBA_8888,
    alphaType: kit.AlphaType.Unpremul, colorSpace: kit.ColorSpace.SRGB,
  };

  function drawn(target, draw, format = info) {
    const memory = kit.Malloc(Uint8Array, target.length);
    memory.toTypedArray().set(target);
    const surface = kit.MakeRasterDirectSurface(format, memory, target.length / SIZE);
    draw(surface.getCanvas());
    surface.flush();
    const pixels = Buffer.from(memory.toTypedArray());
    surface.delete();
    kit.Free(memory);
    return pixels;
  }

  function drawRectangles(canvas, source) {
    const paint = new kit.Paint();
    paint.setAntiAlias(false);
    for (let y = 0; y < SIZE; y += TILE) {
      for (let x = 0; x < SIZE; x += TILE) {
        const at = 4 * (y * SIZE + x);
        const [r, g, b, a] = source.subarray(at, at + 4);
        const edge = (i) => source.readInt8(at + 4 + i) / 16;
        paint.setColorInt(((a << 24) | (r << 16) | (g << 8) | b) >>> 0);
        canvas.save();
        canvas.clipRect(kit.XYWHRect(x, y, TILE, TILE), kit.ClipOp.Intersect, false);
        canvas.drawRect(kit.LTRBRect(x + edge(0), y + edge(1), x + edge(2), y + edge(3)), paint);
        canvas.restore();
      }
    }
    paint.delete();
  }

  const maskInfo = {
    width: SIZE, height: SIZE, colorType: kit.ColorType.Alpha_8,
    alphaType: kit.AlphaType.Premul, colorSpace: kit.ColorSpace.SRGB,
  };
  function loadFont(path, size) {
    const bytes = require('fs').readFileSync(path);
    return new kit.Font(kit.Typeface.MakeFreeTypeFaceFromData(bytes.buffer), size);
  }
  const font = loadFont(fontPath, 40);

  // Letters that do not touch.
  function drawLetters(canvas) {
    const paint = new kit.Paint();
    for (let y = 0; y < SIZE; y += 64) {
      for (let x = 0; x < SIZE; x += 64) {
        canvas.drawText('agO8BQ@&%SswxyzR'[y / 16 + x / 64], x + 8, y + 48, paint, font);
      }
    }
    paint.delete();
  }

  function placesOfSamePictures() {
    const format = { ...maskInfo, width: 64, height: 64 };
    const memory = kit.Malloc(Uint8Array, 64 * 64);
    const surface = kit.MakeRasterDirectSurface(format, memory, 64);
    const paint = new kit.Paint();
    const firsts = Buffer.alloc(2 * 2 * PLACES * PLACES);
    for (const subpixel of [false, true]) {
      font.setSize(20);
      font.setSubpixel(subpixel);
      const known = new Map();
      for (let i = 0; i < PLACES * PLACES; i++) {
        memory.toTypedArray().fill(0);
        const x = 20 + (i % PLACES) / 64, y = 30 + Math.floor(i / PLACES) / 64;
        surface.getCanvas().drawText('g', x, y, paint, font);
        surface.flush();
        const picture = Buffer.from(memory.toTypedArray()).toString('latin1');
        if (!known.has(picture)) known.set(picture, i);
        firsts.writeUInt16LE(known.get(picture), 2 * (i + (subpixel ? PLACES * PLACES : 0)));
      }
    }
    return firsts;
  }

  const output = [];
  for (let at = 0; at < input.length; at += 2 * BYTES) {
    const source = input.subarray(at, at + BYTES);
    const target = input.subarray(at + BYTES, at + 2 * BYTES);
    const image = kit.MakeImage(info, source, 4 * SIZE);
    output.push(drawn(target, (canvas) => canvas.drawImage(image, 0, 0)));
    image.delete();
    output.push(drawn(target, (canvas) => drawRectangles(canvas, source)));
  }
  const clear = Buffer.alloc(SIZE * SIZE);
  output.push(drawn(clear, drawLetters, maskInfo));
  output.push(drawn(input.subarray(0, SIZE * SIZE), drawLetters, maskInfo));
  const paint = new kit.Paint();
  paint.setAntiAlias(true);
  const emoji = loadFont(emojiPath, 40);
  emoji.setEmbeddedBitmaps(true);
  for (const [size, scaleX, skewX] of PICTURES) {
    emoji.setSize(size);
    emoji.setScaleX(scaleX);
    emoji.setSkewX(skewX);
    const draw = (canvas) => canvas.drawText('\u{1F600}', 20, 190, paint, emoji);
    output.push(drawn(clear, draw, maskInfo));
  }
  output.push(placesOfSamePictures());
  require('fs').writeFileSync(1, Buffer.concat(output));
});
