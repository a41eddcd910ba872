// Programs that draw a style, from its canonical text.
function quotedLines(text: string, indent: string, join: string): string {
  return text
    .trimEnd()
    .split('\n')
    .map((line, index, lines) => JSON.stringify(index + 1 < lines.length ? `${line}\n` : line))
    .join(`${join}${indent}`);
}

function cpp(text: string): string {
  return `#include <scene/Renderer.h>

int main() {
    gxtext::Renderer renderer(gxtext::FontSource::installed());
    const gxtext::Style style = gxtext::Style::fromJson(R"json(${text.trimEnd()})json");
    renderer.render(style).writePng("title.png");
}
`;
}

function java(text: string): string {
  return `GxTextView view = new GxTextView(context);
view.setTextStyle(TextStyle.fromJson(
        ${quotedLines(text, '        + ', '\n')}));
`;
}

function kotlin(text: string): string {
  return `val view = GxTextView(context)
view.setTextStyle(TextStyle.fromJson(
    ${quotedLines(text, '    ', ' +\n').replaceAll('$', '\\$')}))
`;
}

function shell(text: string): string {
  return `gxtext render - -o title.png <<'STYLE'
${text.trimEnd()}
STYLE
`;
}

function python(text: string): string {
  return `import gxtext

style = gxtext.Style.from_json(r"""${text.trimEnd()}""")
gxtext.Renderer().render(style).save("title.png")
`;
}

const WRITERS: Record<string, (text: string) => string> = { json: (text) => text, shell, cpp, java, kotlin, python };

export function codeFor(kind: string, text: string): string {
  return WRITERS[kind](text);
}
