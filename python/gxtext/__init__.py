"""Text effects: strings with strokes, shadows, glows and gradients into pixels.

    import gxtext
    style = gxtext.Style(size=96, effects=[gxtext.Stroke(4, "#102040")])
    picture = gxtext.Renderer(fonts="fonts/").render(style, "Hello")
    picture.save("hello.png")
"""

from ._errors import Error, FileError, FontError, PictureError, SceneError, StyleError, StyleProblem, TextError
from ._fields import (
    Background,
    Bevel,
    Emboss,
    InnerGlow,
    InnerShadow,
    LinearGradient,
    OuterGlow,
    OuterShadow,
    Pattern,
    RadialGradient,
    Stop,
    Stroke,
)
from ._native import Picture
from ._native import version as __version__
from ._records import Effect
from ._renderer import Renderer
from ._rows import Rendered, render_many
from ._style import ImportedStyle, Loss, Style, import_layer_style
from ._values import Arrangement, Box, Font, Line, Margins

__all__ = [
    "Arrangement",
    "Background",
    "Bevel",
    "Box",
    "Effect",
    "Emboss",
    "Error",
    "FileError",
    "Font",
    "FontError",
    "ImportedStyle",
    "InnerGlow",
    "InnerShadow",
    "Line",
    "LinearGradient",
    "Loss",
    "Margins",
    "OuterGlow",
    "OuterShadow",
    "Pattern",
    "Picture",
    "PictureError",
    "RadialGradient",
    "Rendered",
    "Renderer",
    "SceneError",
    "Stop",
    "Stroke",
    "Style",
    "StyleError",
    "StyleProblem",
    "TextError",
    "__version__",
    "import_layer_style",
    "render_many",
]

# The names under which users know them. The extension's class keeps its own, by which its stub is made.
for _name in set(__all__) - {"Picture"}:
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__
