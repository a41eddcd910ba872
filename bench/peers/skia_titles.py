"""The measured titles as Skia draws them, with its raster painter."""

import skia

from protocol import serve


def color(paint):
    return skia.Color4f(*paint)


class Title:
    def __init__(self, job):
        self.info = skia.ImageInfo.MakeN32Premul(job["width"], job["height"])
        self.straight = skia.ImageInfo.Make(
            job["width"],
            job["height"],
            skia.ColorType.kBGRA_8888_ColorType,
            skia.AlphaType.kUnpremul_AlphaType,
        )
        typeface = skia.Typeface.MakeFromFile(job["font"], job["fontIndex"])
        if typeface is None:
            raise RuntimeError("cannot open the font")
        font = skia.Font(typeface, job["size"])
        font.setEdging(skia.Font.Edging.kAntiAlias)
        font.setSubpixel(False)
        self.blobs = []
        for line in job["lines"]:
            builder = skia.TextBlobBuilder()
            builder.allocRunPos(
                font,
                [glyph[0] for glyph in line["glyphs"]],
                [skia.Point(glyph[1], glyph[2]) for glyph in line["glyphs"]],
            )
            self.blobs.append((builder.make(), line["x"], line["baseline"]))
        # From the bottom: what is drawn with, where, the blur's deviation, and for what is drawn
        # inside the text the filter before the blur.
        self.runs = 0
        self.steps = []
        filled = False
        for layer in job["layers"]:
            if layer["kind"] not in ("shadow", "glow", "stroke") and not filled:
                self.steps.append((self.paint(color(job["paint"])), (0, 0), 0, None))
                filled = True
            self.steps += self.layer_steps(layer)
        if not filled:
            self.steps.append((self.paint(color(job["paint"])), (0, 0), 0, None))

    def paint(self, fill):
        return skia.Paint(Color4f=fill, AntiAlias=True)

    def layer_steps(self, layer):
        kind = layer["kind"]
        paint = self.paint(color(layer["paint"]))
        if kind in ("stroke", "glow"):
            paint.setStyle(skia.Paint.kStrokeAndFill_Style)
            paint.setStrokeWidth(2 * layer["width"])
            paint.setStrokeJoin(skia.Paint.kRound_Join)
        if kind in ("shadow", "glow"):
            return [(paint, layer["shift"], layer["deviation"], None)]
        if kind == "stroke":
            return [(paint, (0, 0), 0, None)]
        if kind in ("linear", "radial"):
            colors = [color(stop[1]).toColor() for stop in layer["stops"]]
            positions = [stop[0] for stop in layer["stops"]]
            start, end = skia.Point(*layer["from"]), skia.Point(*layer["to"])
            paint.setShader(
                skia.GradientShader.MakeLinear([start, end], colors, positions)
                if kind == "linear"
                else skia.GradientShader.MakeRadial(start, layer["width"], colors, positions)
            )
            paint.setColor4f(skia.Color4f(1, 1, 1, 1))
            return [(paint, (0, 0), 0, None)]
        if kind == "pattern":
            tile = skia.Image.open(layer["pattern"])
            repeat = skia.TileMode.kRepeat
            paint.setShader(tile.makeShader(repeat, repeat, skia.SamplingOptions()))
            paint.setAlphaf(layer["opacity"])
            return [(paint, (0, 0), 0, None)]
        # Around the text, blurred and moved, drawn where the text is.
        inverse = skia.ImageFilters.ColorFilter(
            skia.ColorFilters.Blend(color(layer["paint"]), None, skia.BlendMode.kSrcOut), None
        )
        return [(paint, layer["shift"], layer["deviation"], inverse)]

    def text(self, canvas, paint, shift=(0, 0)):
        for blob, x, y in self.blobs:
            canvas.drawTextBlob(blob, x + shift[0], y + shift[1], paint)

    def draw(self):
        self.runs += 1
        surface = skia.Surface.MakeRaster(self.info)
        canvas = surface.getCanvas()
        for paint, shift, deviation, inside in self.steps:
            # A trifle different each time, so that no blur of a run before is found in a cache.
            deviation *= 1 + 1e-6 * self.runs
            if not inside:
                if deviation:
                    paint.setMaskFilter(skia.MaskFilter.MakeBlur(skia.kNormal_BlurStyle, deviation))
                self.text(canvas, paint, shift)
                continue
            blur = skia.ImageFilters.Blur(deviation, deviation, input=inside)
            canvas.saveLayer()
            self.text(canvas, skia.Paint(AntiAlias=True))
            within = skia.Paint(BlendMode=skia.BlendMode.kSrcIn, ImageFilter=blur)
            canvas.saveLayer(paint=within)
            self.text(canvas, skia.Paint(AntiAlias=True), shift)
            canvas.restore()
            canvas.restore()
        pixels = bytearray(self.info.width() * self.info.height() * 4)
        surface.readPixels(self.straight, pixels, self.info.width() * 4, 0, 0)
        return pixels

    def save(self, pixels, file):
        skia.Image.frombytes(
            pixels, (self.info.width(), self.info.height()), skia.ColorType.kBGRA_8888_ColorType
        ).save(file)


title = None


def prepare(job):
    global title
    title = Title(job)
    return title.draw, "shaped beforehand"


serve(f"Skia {skia.__version__}", prepare, lambda pixels, file: title.save(pixels, file))
