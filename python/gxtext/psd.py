"""Styles out of layered picture files: the text layers of a PSD or PSB file, with their layer effects.

    python -m gxtext.psd title.psd --out styles/

Needs the extra `psd`: pip install 'gxtext[psd]'.
"""

from __future__ import annotations

import argparse
import json
import math
import os
import pathlib
import re
import sys
from collections.abc import Callable, Iterable, Iterator
from typing import Any, NamedTuple

from psd_tools import PSDImage
from psd_tools.api.layers import TypeLayer
from psd_tools.constants import FontBaseline, FontCaps, Justification, Resource, Tag, TextType
from psd_tools.psd.descriptor import Bool, Descriptor, Double, Enumerated, Integer, List, String, UnitFloat

from ._errors import Error, PictureError
from ._renderer import File, Renderer
from ._style import Loss, Style, import_layer_style


class TextStyle(NamedTuple):
    """A text layer."""

    name: str
    """The layer's, after those of its groups: "Header/Gold"."""
    style: Style
    """With the text."""
    losses: tuple[Loss, ...]
    """What the style does not say as the file did."""


# What a descriptor's four letters stand for, as import_layer_style() calls it. Effects have the fields of
# their kind only, so that one table does for all.
_FIELDS = {
    b"enab": "enabled", b"present": "present", b"showInDialog": "showInDialog", b"Md  ": "blendMode",
    b"Opct": "opacity", b"Clr ": "color", b"blur": "size", b"Sz  ": "size", b"lagl": "angle", b"Angl": "angle",
    b"Lald": "altitude", b"uglg": "useGlobalLight", b"Dstn": "distance", b"Ckmt": "choke", b"Nose": "noise",
    b"AntA": "antialiased", b"TrnS": "contour", b"MpgS": "contour", b"layerConceals": "layerConceals",
    b"GlwT": "technique", b"glwS": "source", b"Inpr": "range", b"ShdN": "jitter", b"Grad": "gradient",
    b"bvlS": "style", b"bvlT": "technique", b"bvlD": "direction", b"srgR": "strength", b"Sftn": "soften",
    b"hglM": "highlightBlendMode", b"hglC": "highlightColor", b"hglO": "highlightOpacity",
    b"sdwM": "shadowBlendMode", b"sdwC": "shadowColor", b"sdwO": "shadowOpacity", b"Styl": "position",
    b"PntT": "fillType", b"Ptrn": "pattern", b"Dthr": "dither", b"Rvrs": "reverse", b"Type": "type",
    b"Algn": "align", b"Scl ": "scale", b"Ofst": "offset", b"gs99": "interpolationMethod", b"Invr": "invert",
    b"Nm  ": "name", b"Idnt": "id", b"Crv ": "curve", b"Hrzn": "x", b"Vrtc": "y", b"Intr": "smoothness",
    b"Clrs": "colorStops", b"Trns": "opacityStops", b"Lctn": "location", b"Mdpn": "midpoint",
    b"RndS": "randomSeed", b"ShTr": "addTransparency", b"VctC": "restrictColors", b"ClrS": "colorModel",
    b"Smth": "roughness", b"Mnm ": "min", b"Mxm ": "max",
}  # fmt: skip

_WORDS = {
    "blendMode": {
        b"Nrml": "normal", b"Mltp": "multiply", b"Drkn": "darken", b"linearBurn": "linear burn",
        b"Scrn": "screen", b"Lghn": "lighten", b"linearDodge": "linear dodge",
        b"Ovrl": "overlay", b"SftL": "soft light", b"HrdL": "hard light", b"CDdg": "color dodge",
        b"CBrn": "color burn", b"Dfrn": "difference", b"Xclu": "exclusion", b"H   ": "hue", b"Strt": "saturation",
        b"Clr ": "color", b"Lmns": "luminosity", b"Dslv": "dissolve",
    },
    "source": {b"SrcE": "edge", b"SrcC": "center"},
    "style": {
        b"InrB": "inner bevel", b"OtrB": "outer bevel", b"Embs": "emboss", b"PlEb": "pillow emboss",
        b"strokeEmboss": "stroke emboss",
    },
    "direction": {b"In  ": "up", b"Out ": "down"},
    "position": {b"OutF": "outside", b"InsF": "inside", b"CtrF": "center"},
    "fillType": {b"SClr": "color", b"GrFl": "gradient", b"Ptrn": "pattern"},
    "type": {
        b"Lnr ": "linear", b"Rdl ": "radial", b"Angl": "angle", b"Rflc": "reflected", b"Dmnd": "diamond",
        b"CstS": "solid", b"ClNs": "noise",
    },
    "interpolationMethod": {b"Gcls": "classic", b"Perc": "perceptual", b"Lnr ": "linear", b"Smoo": "smooth"},
    "colorModel": {b"RGBC": "rgb", b"HSBl": "hsb", b"LbCl": "lab"},
}  # fmt: skip
_WORDS["highlightBlendMode"] = _WORDS["shadowBlendMode"] = _WORDS["blendMode"]
# The same letters mean another thing on another effect.
_TECHNIQUES = {
    b"ebbl": {b"SfBL": "smooth", b"PrBL": "chisel hard", b"Slmt": "chisel soft"},
    b"": {b"SfBL": "softer", b"PrBL": "precise"},
}

# Lists and single records of an effect; where a file has both, the list holds all.
_EFFECTS = {
    b"DrSh": "dropShadow", b"IrSh": "innerShadow", b"OrGl": "outerGlow", b"IrGl": "innerGlow", b"ebbl": "bevel",
    b"SoFi": "solidFill", b"GrFl": "gradientOverlay", b"patternFill": "patternOverlay", b"ChFX": "satin",
    b"FrFX": "stroke", b"dropShadowMulti": "dropShadow", b"innerShadowMulti": "innerShadow",
    b"solidFillMulti": "solidFill", b"gradientFillMulti": "gradientOverlay", b"frameFXMulti": "stroke",
}  # fmt: skip
_LISTS = {"dropShadow", "innerShadow", "solidFill", "gradientOverlay", "stroke"}
_LENGTHS = {"size", "distance", "soften", "choke"}
# In 4096ths, which files of ag-psd and image editors have alike.
_PLACES = {"location", "smoothness", "roughness"}


def _letters(key: Any) -> bytes:
    return bytes(getattr(key, "value", key))


def _color(color: Descriptor) -> dict[str, float]:
    parts = {_letters(key): float(value.value) for key, value in color.items() if hasattr(value, "value")}
    models: dict[bytes, dict[bytes, tuple[str, float]]] = {
        b"RGBC": {b"Rd  ": ("r", 1), b"Grn ": ("g", 1), b"Bl  ": ("b", 1)},
        b"HSBC": {b"H   ": ("h", 1 / 360), b"Strt": ("s", 0.01), b"Brgh": ("b", 0.01)},
        b"CMYC": {b"Cyn ": ("c", 2.55), b"Mgnt": ("m", 2.55), b"Ylw ": ("y", 2.55), b"Blck": ("k", 2.55)},
        b"Grsc": {b"Gry ": ("k", 2.55)},
        b"LbCl": {b"Lmnc": ("l", 0.01), b"A   ": ("a", 1 / 127), b"B   ": ("b", 1 / 127)},
    }
    model = models.get(_letters(color.classID), {})
    return {name: parts[key] * factor for key, (name, factor) in model.items() if key in parts}


def _value(name: str, value: Any, effect: bytes) -> Any:
    if isinstance(value, Descriptor):
        is_color = name == "color" or name.endswith("Color")
        return _color(value) if is_color else _record(value, effect)
    if isinstance(value, List):
        return [_value(name, each, effect) for each in value]
    if isinstance(value, Enumerated):
        words = _TECHNIQUES.get(effect, _TECHNIQUES[b""]) if name == "technique" else _WORDS.get(name, {})
        letters = _letters(value.enum)
        return words.get(letters, letters.decode("latin-1").strip())
    if isinstance(value, UnitFloat):
        if name in _LENGTHS:
            return {"units": value.unit.name.lstrip("_"), "value": value.value}
        return value.value / 100 if _letters(value.unit) == b"#Prc" else value.value
    if isinstance(value, Bool):
        return bool(value.value)
    if isinstance(value, String):
        return value.value.rstrip("\0")
    if isinstance(value, (Integer, Double)):
        if name in _PLACES:
            return value.value / 4096
        if name in ("midpoint", "min", "max"):
            return value.value / 100
        return value.value
    return str(value)


def _record(descriptor: Descriptor, effect: bytes) -> dict[str, Any]:
    record: dict[str, Any] = {}
    for key, value in descriptor.items():
        letters = _letters(key)
        name = _FIELDS.get(letters, letters.decode("latin-1").strip())
        if letters == b"GrdF":
            name = "type"
        if _letters(descriptor.classID) == b"Clrt" and name == "type":
            continue  # whether a stop follows the brush's colour; its own stands beside
        record[name] = _value(name, value, effect)
    return record


def _effect(descriptor: Descriptor) -> dict[str, Any]:
    letters = _letters(descriptor.classID)
    record = _record(descriptor, letters)
    if letters == b"FrFX" and isinstance(record.get("gradient"), dict):
        # How the ramp of a stroke lies is said beside it.
        record["gradient"]["style"] = record.pop("type", "linear")
        for name in ("angle", "scale", "dither", "reverse", "align", "offset", "interpolationMethod"):
            if name in record:
                record["gradient"][name] = record.pop(name)
    return record


def layer_effects(layer: Any) -> dict[str, Any]:
    """The effects of a layer in the shape that import_layer_style() takes."""
    blocks = layer.tagged_blocks
    # The first has all effects of a kind; the second, for older readers, one of each.
    tags = (Tag.OBJECT_BASED_EFFECTS_LAYER_INFO_V0, Tag.OBJECT_BASED_EFFECTS_LAYER_INFO)
    data = next((found for tag in tags if isinstance(found := blocks.get_data(tag), Descriptor)), None)
    effects: dict[str, Any] = {}
    for key, value in data.items() if data is not None else ():
        letters = _letters(key)
        name = _EFFECTS.get(letters, letters.decode("latin-1").strip())
        if letters == b"masterFXSwitch":
            effects["disabled"] = not value.value
        elif letters == b"Scl ":
            effects["scale"] = value.value / 100
        elif isinstance(value, List):
            effects[name] = [_effect(each) for each in value]
        elif isinstance(value, Descriptor) and name not in effects:
            effects[name] = [_effect(value)] if name in _LISTS else _effect(value)
        elif letters != b"numModifyingFX" and not isinstance(value, Descriptor):
            effects[name] = str(getattr(value, "value", value))
    return effects


class _Text:
    """The text of a layer as fields of a style."""

    def __init__(self, layer: TypeLayer, families: dict[str, str]) -> None:
        self.fields: dict[str, Any] = {}
        self.losses: list[Loss] = []
        self._families = families
        setting = layer.typesetting
        self.fields["text"] = setting.text.replace("\r", "\n").replace("\x03", "\n").rstrip("\n")
        xx, xy, yx, yy, _, _ = layer.transform
        self._scale = math.hypot(yx, yy) or 1.0
        if abs(xy) > 1e-6 or abs(yx) > 1e-6 or xx <= 0 or yy <= 0:
            self._lose("transform", "dropped", "a style does not turn, slant or mirror a text")
        warp = layer.warp.get(b"warpStyle") if layer.warp is not None else None
        if isinstance(warp, Enumerated) and _letters(warp.enum) != b"warpNone":
            self._lose("warp", "dropped", "texts are not bent")
        runs = [run for run in setting.runs if run.text.strip()]
        if runs:
            self._read_style(runs[0].style)
            if any(self._look(run.style) != self._look(runs[0].style) for run in runs[1:]):
                self._lose("styleRuns", "approximated", "all letters look like the first ones")
        if setting.paragraphs:
            self._read_paragraph(setting.paragraphs[0].style)
        if layer.text_type == TextType.PARAGRAPH:
            self._read_box(layer, math.hypot(xx, xy))

    def _lose(self, name: str, kind: str, reason: str) -> None:
        self.losses.append(Loss(f"$.text.{name}", kind, reason))

    @staticmethod
    def _look(style: Any) -> tuple[Any, ...]:
        return (
            style.font_name, style.font_size, style.fill_color, style.faux_bold, style.faux_italic, style.tracking,
            style.horizontal_scale, style.vertical_scale, style.font_caps, style.font_baseline, style.underline,
            style.strikethrough, style.baseline_shift,
        )  # fmt: skip

    def _read_style(self, style: Any) -> None:
        self._read_font(style)
        size = style.font_size * self._scale * style.vertical_scale
        self.fields["size"] = min(max(round(size, 3), 1), 4096)
        self.fields["scaleX"] = min(max(round(style.horizontal_scale / (style.vertical_scale or 1), 4), 0.1), 10)
        self.fields["letterSpacing"] = min(max(style.tracking / 1000, -1), 10)
        if style.faux_bold:
            self.fields["bold"] = True
        if style.faux_italic:
            self.fields["italic"] = True
        color = style.fill_color
        if color is not None and len(color) == 4:
            self.fields["color"] = "#" + "".join(f"{round(255 * min(max(part, 0), 1)):02X}" for part in color)
        elif color is not None:
            self._lose("fillColor", "dropped", "not a colour of red, green and blue")
        if not style.auto_leading and style.leading:
            # Fonts are about a fifth higher than their size says.
            spacing = style.leading / (1.2 * (style.font_size or 1))
            self.fields["lineSpacing"] = min(max(round(spacing, 3), 0.1), 10)
            self._lose("leading", "approximated", "relative to a line height of 1.2 font sizes")
        dropped = {
            "underline": style.underline,
            "strikethrough": style.strikethrough,
            "fontCaps": style.font_caps != FontCaps.NORMAL,
            "fontBaseline": style.font_baseline != FontBaseline.NORMAL,
            "baselineShift": style.baseline_shift,
            "strokeFlag": style.stroke_flag,
        }
        for name, is_set in dropped.items():
            if is_set:
                self._lose(name, "dropped", "a style has none")

    def _read_font(self, style: Any) -> None:
        name = style.font_name
        stem, _, variant = name.partition("-")
        family = (style.font.family if style.font else "") or stem
        known = self._families.get(_folded(family)) or self._families.get(_folded(stem))
        self.fields["font"] = known or family
        if known is None and name:
            self._lose("font", "approximated", f'no font "{name}" is known; the family is taken to be "{family}"')
        words = f"{variant} {style.font.style if style.font else ''}".lower()
        self.fields["bold"] = "bold" in words or "black" in words or "heavy" in words
        self.fields["italic"] = "italic" in words or "oblique" in words

    def _read_paragraph(self, style: Any) -> None:
        sides = {Justification.LEFT: "left", Justification.RIGHT: "right", Justification.CENTER: "center"}
        side = sides.get(style.justification)
        self.fields["align"] = side or "start"
        if side is None:
            self._lose("justification", "approximated", "lines are not justified")

    def _read_box(self, layer: TypeLayer, scale: float) -> None:
        try:
            shape = layer.engine_dict["Rendered"]["Shapes"]["Children"][0]["Cookie"]["Photoshop"]
            left, _, right, _ = (float(side) for side in shape["BoxBounds"])
            self.fields["width"] = min(max(round((right - left) * scale), 1), 65535)
        except (KeyError, IndexError, TypeError, ValueError):
            self._lose("boxBounds", "dropped", "not readable; the text is as wide as it is")


def _folded(name: str) -> str:
    return re.sub(r"[\W_]", "", name).lower()


def _read_layer(layer: TypeLayer, name: str, light: dict[str, float], families: dict[str, str]) -> TextStyle:
    imported = import_layer_style({**layer_effects(layer), **light}, name)
    text = _Text(layer, families)
    losses = [*text.losses, *imported.losses]
    fields = {**text.fields, "opacity": layer.opacity / 255}
    fill = layer.tagged_blocks.get_data(Tag.BLEND_FILL_OPACITY, 255)
    fields["fillOpacity"] = int(getattr(fill, "value", fill)) / 255
    if layer.blend_mode.name not in ("NORMAL", "PASS_THROUGH"):
        losses.append(Loss("$.blendMode", "dropped", "a picture does not know what it will lie on"))
    fields = {each: round(value, 4) if isinstance(value, float) else value for each, value in fields.items()}
    return TextStyle(name, imported.style.with_values(fields), tuple(losses))


def _text_layers(group: Iterable[Any], prefix: str = "") -> Iterator[tuple[str, TypeLayer]]:
    for layer in group:
        name = prefix + layer.name.rstrip("\0")
        if layer.is_group():
            yield from _text_layers(layer, f"{name}/")
        elif isinstance(layer, TypeLayer):
            yield name, layer


def _light(picture: PSDImage) -> dict[str, float]:
    light = {}
    for name, key in (("globalAngle", Resource.GLOBAL_ANGLE), ("globalAltitude", Resource.GLOBAL_ALTITUDE)):
        value = picture.image_resources.get_data(key)
        if value is not None:
            light[name] = float(getattr(value, "value", value))
    return light


def read(file: File, fonts: File | Iterable[File] | Renderer | None = None) -> list[TextStyle]:
    """The text layers of a layered picture file, from the lowest to the topmost, hidden ones too.

    `fonts`, as Renderer takes them or a renderer, say which families there are: a file names its fonts by
    another kind of name. Raises PictureError for a file that cannot be read as one, OSError."""
    renderer = fonts if isinstance(fonts, Renderer) else Renderer(fonts)
    families = {_folded(family): family for family in renderer.families}
    with open(file, "rb") as source:
        try:
            picture = PSDImage.open(source)
            light = _light(picture)
            return [_read_layer(layer, name, light, families) for name, layer in _text_layers(picture)]
        except (Error, MemoryError):
            raise
        except Exception as error:  # whatever the reader of a malformed file runs into
            reason = f"not readable as a layered picture: {error}"
            raise PictureError(f"{os.fspath(file)}: {reason}", os.fspath(file), reason, "") from error


def _unused(name: str, used: set[str]) -> str:
    stem = re.sub(r"[^\w.-]+", "-", name).strip("-.") or "text"
    candidates = (stem if number == 1 else f"{stem}-{number}" for number in range(1, len(used) + 2))
    free = next(candidate for candidate in candidates if candidate.lower() not in used)
    used.add(free.lower())
    return free


def _save(texts: Iterable[TextStyle], folder: str) -> None:
    os.makedirs(folder, exist_ok=True)
    used: set[str] = set()
    for text in texts:
        text.style.save(pathlib.Path(folder) / f"{_unused(text.name, used)}.json")


def _as_json(texts: Iterable[TextStyle]) -> str:
    return json.dumps(
        [
            {
                "name": text.name,
                "style": json.loads(text.style.to_json()),
                "losses": [{"path": loss.path, "kind": loss.kind, "reason": loss.reason} for loss in text.losses],
            }
            for text in texts
        ]
    )


def main(arguments: list[str] | None = None, say: Callable[[str], object] = sys.stderr.write) -> int:
    """The command line; its exit status."""
    parser = argparse.ArgumentParser(prog="python -m gxtext.psd", description="Styles of the text layers of a PSD file")
    parser.add_argument("file", metavar="FILE.psd")
    parser.add_argument("--out", metavar="DIR", default=".", help="where the styles go, one file a layer")
    parser.add_argument(
        "--fonts", metavar="FILE|DIR", action="append",
        help="folder of fonts, or font files one by one, taken instead of those installed",
    )  # fmt: skip
    parser.add_argument("--json", action="store_true", help="print names, styles and losses, and write no files")
    parser.add_argument("--strict", action="store_true", help="fail when anything is approximated or dropped")
    options = parser.parse_args(arguments)
    try:
        fonts = options.fonts
        texts = read(options.file, fonts[0] if fonts and len(fonts) == 1 else fonts)
        if options.json:
            print(_as_json(texts))
        else:
            _save(texts, options.out)
            for text, loss in ((text, loss) for text in texts for loss in text.losses):
                say(f"{options.file}: {text.name}: {loss.path}: {loss.kind}: {loss.reason}\n")
    except (Error, OSError) as error:
        say(f"{error}\n")
        return 1
    if not texts:
        say(f"{options.file}: no text layers\n")
    return 1 if options.strict and any(text.losses for text in texts) else 0


if __name__ == "__main__":
    sys.exit(main())
