"""What type checkers must take, and refuse: a comment that ignores nothing is an error, too."""

import gxtext

style = gxtext.Style(
    size=96,
    align="center",
    effects=[gxtext.Stroke(4, "#102040", fill=gxtext.LinearGradient([gxtext.Stop("#FF0000", 0)])), gxtext.Bevel()],
)
picture: gxtext.Picture = gxtext.Renderer(fonts="fonts/").render(style, "Hello")
size: tuple[int, int] = picture.size
data: bytes = picture.to_png("fast")
view: memoryview = memoryview(picture)
width: float = style.effects[0].to_dict()["size"]
for result in gxtext.render_many(["a", {"text": "b"}], style, workers=2):
    if result.error:
        print(result.error)

gxtext.Stroke(sizee=4)  # type: ignore[arg-type]
gxtext.Stroke(position="middle")  # type: ignore[arg-type]
gxtext.LinearGradient()  # type: ignore[call-arg]
gxtext.Style(size="8")  # type: ignore[arg-type]
picture.to_png("best")  # type: ignore[arg-type]
