"""The measured titles as Pillow draws them."""

import PIL
from PIL import Image, ImageChops, ImageDraw, ImageFilter, ImageFont, features

from protocol import serve


def color(paint):
    return tuple(round(255 * channel) for channel in paint[:3])


class Title:
    def __init__(self, job):
        self.size = (job["width"], job["height"])
        self.job = job
        self.font = ImageFont.truetype(job["font"], round(job["size"]), index=job["fontIndex"])
        self.tiles = {
            layer["pattern"]: Image.open(layer["pattern"]).convert("RGB")
            for layer in job["layers"]
            if layer["kind"] == "pattern"
        }
        self.inks = {}

    def mask(self, shift=(0, 0), stroke=0):
        image = Image.new("L", self.size)
        draw = ImageDraw.Draw(image)
        for line in self.job["lines"]:
            draw.text(
                (line["x"] + shift[0], line["baseline"] + shift[1]),
                line["text"],
                fill=255,
                font=self.font,
                anchor="ls",
                stroke_width=stroke,
            )
        return image

    def blurred(self, mask, layer):
        return mask.filter(ImageFilter.GaussianBlur(layer["deviation"]))

    def ramp(self, layer):
        """Pillow draws ramps of two greys from top to bottom; a table colours them."""
        grey = (
            Image.linear_gradient("L")
            if layer["kind"] == "linear"
            else Image.radial_gradient("L")
        ).resize(self.size)
        stops = layer["stops"]
        if layer["kind"] == "linear" and layer["to"][1] < layer["from"][1]:
            stops = [[1 - position, paint] for position, paint in reversed(stops)]
        tables = []
        for channel in range(3):
            tables.append(grey.point([at(stops, i / 255, channel) for i in range(256)]))
        return Image.merge("RGB", tables)

    def tiled(self, tile):
        image = Image.new("RGB", self.size)
        for y in range(0, self.size[1], tile.height):
            for x in range(0, self.size[0], tile.width):
                image.paste(tile, (x, y))
        return image

    def draw(self):
        image = Image.new("RGBA", self.size)
        glyphs = self.mask()

        def put(content, coverage, opacity):
            if opacity < 1:
                coverage = coverage.point(lambda value: value * opacity)
            if not isinstance(content, Image.Image):
                content = Image.new("RGB", self.size, content)
            content.putalpha(coverage)
            image.alpha_composite(content)

        filled = False
        for layer in self.job["layers"]:
            kind = layer["kind"]
            if kind not in ("shadow", "glow", "stroke") and not filled:
                put(color(self.job["paint"]), glyphs, self.job["paint"][3])
                filled = True
            if kind == "shadow":
                coverage = self.blurred(self.mask(layer["shift"]), layer)
            elif kind == "glow":
                coverage = self.blurred(self.mask(stroke=layer["width"]), layer)
            elif kind == "stroke":
                coverage = self.mask(stroke=layer["width"])
            elif kind in ("linear", "radial"):
                put(self.ramp(layer), glyphs, layer["stops"][0][1][3])
                continue
            elif kind == "pattern":
                put(self.tiled(self.tiles[layer["pattern"]]), glyphs, layer["opacity"])
                continue
            else:
                around = ImageChops.invert(self.mask(layer["shift"]))
                coverage = ImageChops.multiply(self.blurred(around, layer), glyphs)
            put(color(layer["paint"]), coverage, layer["paint"][3])
        if not filled:
            put(color(self.job["paint"]), glyphs, self.job["paint"][3])
        return image


def at(stops, position, channel):
    """A channel of the ramp, 0-255."""
    before = stops[0]
    for stop in stops:
        if stop[0] >= position:
            span = stop[0] - before[0]
            share = (position - before[0]) / span if span else 0
            return round(255 * (before[1][channel] * (1 - share) + stop[1][channel] * share))
        before = stop
    return round(255 * before[1][channel])


def prepare(job):
    kinds = {layer["kind"] for layer in job["layers"]}
    if any(line["rightToLeft"] for line in job["lines"]) and not features.check("raqm"):
        raise RuntimeError("no shaping in this Pillow")
    note = "gradients along the picture" if kinds & {"linear", "radial"} else ""
    return Title(job).draw, note


if __name__ == "__main__":
    serve(f"Pillow {PIL.__version__}", prepare, lambda image, file: image.save(file))
