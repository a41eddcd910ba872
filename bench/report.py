"""Writes the tables of docs/performance.md and README.md from what a run of the benchmark recorded.

    bench/report.py docs/bench.tsv docs/performance.md README.md

A table stands between "<!-- bench NAME -->" and "<!-- end -->"; the text around it stays. What the
tables say is all from the file (gxtext_bench --results), so that no figure is carried over by hand.
"""

import re
import sys


class Row:
    """A row of the benchmark: contenders in their order, each with what was measured."""

    def __init__(self, operation, unit):
        self.operation = operation
        self.unit = unit
        self.contenders = {}

    def value(self, name):
        return self.contenders[name]["median"]

    def others(self):
        """Peers that were there and did it all, on a surface of its own for each picture."""
        return {
            name: c
            for name, c in self.contenders.items()
            if name not in ("ours", "plain") and c["median"] > 0 and not c["partial"] and "kept surface" not in c["note"]
        }

    def fastest(self):
        return min(self.others().items(), key=lambda item: item[1]["median"], default=None)


def read(file):
    """The rows, in order, and the run's line about itself."""
    rows = {}
    about = ""
    for line in open(file, encoding="utf-8"):
        if line.startswith("#"):
            about = line[1:].strip()
            continue
        operation, name, median, unit, ratio, target, extent, note = line.rstrip("\n").split("\t")
        row = rows.setdefault(operation, Row(operation, unit))
        while name in row.contenders:
            name += " " + note  # one library by two of its functions
        row.contenders[name] = {
            "median": float(median),
            "ratio": float(ratio),
            "target": float(target),
            "partial": extent == "partial",
            "note": note,
        }
    return list(rows.values()), about


def figure(value):
    """Three digits that count."""
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.3g}" if value >= 0.001 else f"{value:.4f}"


def times(contender):
    if contender["median"] <= 0:
        return "-"
    text = figure(contender["ratio"])
    return f"**{text}**" if contender["ratio"] < contender["target"] else text


def table(head, lines, left=1):
    yield "| " + " | ".join(head) + " |"
    yield "|" + "|".join("---" if i < left else "---:" for i in range(len(head))) + "|"
    for line in lines:
        yield "| " + " | ".join(line) + " |"


def short(name):
    """Without the version of a library that is a part of the name only to tell it."""
    return re.sub(r" \(canvas [^)]*?(, kept)?\)", lambda m: m.group(1) or "", name)


def wide(rows, what, unit):
    """A column for each contender: ours as it is, the others over ours; below it what they do."""
    names = []
    for row in rows:
        names += [name for name in row.contenders if name not in names + ["ours", "plain"]]
    yield from table(
        [what, f"ours, {unit}"] + [short(name) for name in names],
        [
            [label(row), figure(row.value("ours"))]
            + [times(row.contenders[n]) if n in row.contenders else "-" for n in names]
            for row in rows
        ],
    )
    yield ""
    for name in names:
        notes = {}
        for row in rows:
            note = row.contenders.get(name, {}).get("note")
            if note:
                notes.setdefault(note, []).append(label(row))
        parts = [n if len(found) > 1 else f"{n} ({found[0]})" for n, found in notes.items()]
        # What a longer note says, too, needs no saying.
        parts = [p for p in parts if not any(p != q and q.startswith(p) for q in parts)]
        if parts:
            yield f"- {name}: " + "; ".join(parts)


def label(row):
    return re.sub("^(title|command|limit): ", "", row.operation)


def narrow(rows):
    """The plain formula, and the fastest of the others."""
    for row in rows:
        fastest = row.fastest()
        plain = row.contenders.get("plain")
        yield [
            row.operation,
            figure(row.value("ours")),
            times(plain) if plain else "-",
            times(fastest[1]) if fastest else "-",
            f"{fastest[0]} {fastest[1]['note']}".strip() if fastest else "",
        ]


def titles(rows):
    return [row for row in rows if row.operation.startswith("title") and "ours" in row.contenders]


def pictures_table(rows, _):
    yield from wide([r for r in titles(rows) if r.others()], "picture", "ms")


def command_table(rows, _):
    yield from wide([r for r in rows if r.operation.startswith("command")], "command", "ms of CPU")


def operation_table(rows, _):
    chosen = [r for r in rows if r.unit == "ns/px" and not r.operation.startswith("limit")]
    head = ["operation", "ours, ns per pixel", "plain formula", "fastest other", "which"]
    yield from table(head, narrow(chosen))


def line_table(rows, _):
    chosen = [
        r
        for r in rows
        if r.unit == "ms" and not r.operation.startswith(("title", "command", "limit"))
    ]
    head = ["work", "ours, ms", "plain form", "fastest other", "which"]
    yield from table(head, narrow(chosen))


def limit_table(rows, _):
    lines = []
    for row in rows:
        if not row.operation.startswith("limit"):
            continue
        value = row.value("ours")
        rate = f"{1 / value:.0f} G a second" if "product" in row.operation else f"{4 / value:.0f} GB/s"
        lines.append([label(row), f"{value:.3f}", rate])
    yield from table(["limit", "ns each", "rate"], lines)


def thread_table(rows, _):
    chosen = [row for row in rows if row.operation.startswith("titles on")]
    lines = [
        [figure(r.value("ours")), figure(r.value("plain")), times(r.contenders["plain"])]
        for r in chosen
    ]
    yield from table(["two threads, ms", "one thread, ms", "times"], lines, 0)


def target_table(rows, _):
    missed = []
    asked = 0
    for row in rows:
        for name, c in row.contenders.items():
            if c["target"] > 0 and c["median"] > 0:
                asked += 1
                if c["ratio"] < c["target"]:
                    missed.append([row.operation, name, figure(c["ratio"]), figure(c["target"])])
    yield f"{asked - len(missed)} of {asked} targets were met."
    if missed:
        yield ""
        yield from table(["missed", "against", "times", "target"], missed, 2)


def readme_table(rows, _):
    """What users see first: whole pictures, and a few operations."""
    lines = []
    for row in titles(rows):
        fastest = row.fastest()
        if not fastest:
            continue
        name, contender = fastest
        lines.append(
            [label(row)]
            + [f"{figure(row.value('ours'))} ms", times(contender), short(name)]
        )
    for operation in ("dilation r=10, text", "dilation r=50, text", "blur 10, text", "blur 50, text"):
        for row in rows:
            if row.operation == operation and row.fastest():
                name, contender = row.fastest()
                lines.append(
                    [operation, f"{figure(row.value('ours'))} ns a pixel", times(contender), name]
                )
    yield from table(["what", "ours", "times faster", "than the fastest other"], lines)


def about_line(_, about):
    yield about


TABLES = {
    "about": about_line,
    "pictures": pictures_table,
    "commands": command_table,
    "operations": operation_table,
    "lines": line_table,
    "limits": limit_table,
    "threads": thread_table,
    "targets": target_table,
    "readme": readme_table,
}


def main(results, *documents):
    rows, about = read(results)
    for document in documents:
        text = open(document, encoding="utf-8").read()

        def fill(match):
            body = "\n".join(TABLES[match.group(1)](rows, about))
            return f"<!-- bench {match.group(1)} -->\n{body}\n<!-- end -->"

        text = re.sub(r"<!-- bench (\w+) -->\n.*?<!-- end -->", fill, text, flags=re.DOTALL)
        open(document, "w", encoding="utf-8").write(text)


main(*sys.argv[1:])
