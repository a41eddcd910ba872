# The body of a manual page from one of our own documents: headings, paragraphs, bullets, fenced code, and tables, whose
# rows become entries of a list, because a terminal is too narrow for their columns. The title is left out.
#   awk -f from-markdown.awk DOCUMENT.md > BODY.man

BEGIN { fresh = 1 }

# Text as roff prints it literally; in code every sign is the one that is typed.
function literal(text, isCode) {
    gsub(/\\/, "\\e", text)
    if (isCode) {
        gsub(/-/, "\\-", text)
        gsub(/'/, "\\(aq", text)
        gsub(/`/, "\\(ga", text)
        gsub(/\^/, "\\(ha", text)
        gsub(/~/, "\\(ti", text)
    }
    return text
}

# `code` and **words** in bold, links as their words.
function inline(text,    parts, count, i, result) {
    while (match(text, /\[[^]]*\]\([^)]*\)/)) {
        result = substr(text, RSTART + 1, RLENGTH - 1)
        text = substr(text, 1, RSTART - 1) substr(result, 1, index(result, "](") - 1) substr(text, RSTART + RLENGTH)
    }
    gsub(/style-format[.]md/, "`gxtext-style`(5)", text)
    count = split(text, parts, "`")
    result = ""
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 0) {
            result = result "\\fB" literal(parts[i], 1) "\\fR"
        } else {
            gsub(/\*\*/, "", parts[i])
            result = result literal(parts[i], 0)
        }
    }
    return result
}

# A line of text, which must not look like a request.
function line(text) {
    sub(/^[.']/, "\\\\\\&&", text)
    return text
}

function flush() {
    if (paragraph != "") print line(inline(paragraph))
    paragraph = ""
}

function trimmed(text) {
    gsub(/^ +| +$/, "", text)
    return text
}

# The columns of a table: the first names the entry, "meaning" (or else the second) says it, the others stand after it.
function readHeader(    i) {
    gsub(/^\||\|$/, "")
    columns = split($0, header, "|")
    saying = 2
    for (i = 1; i <= columns; ++i) {
        header[i] = trimmed(header[i])
        if (header[i] == "meaning") saying = i
    }
}

function writeRow(    cells, i, cell, notes, text) {
    gsub(/\\\|/, "\001")
    gsub(/^\||\|$/, "")
    split($0, cells, "|")
    for (i = 1; i <= columns; ++i) {
        cell = trimmed(cells[i])
        gsub(/\001/, "|", cell)
        cells[i] = cell
        if (i == 1 || i == saying || cell == "") continue
        if (header[i] == "default" && cell != "required") cell = "default " cell
        notes = notes (notes == "" ? "" : "; ") cell
    }
    text = cells[saying]
    if (notes != "") text = text (text == "" ? "" : " ") "(" notes ")"
    print ".TP"
    print line(inline(cells[1]))
    print line(inline(text))
}

/^```/ {
    flush()
    inCode = !inCode
    print inCode ? ".RS 4\n.EX" : ".EE\n.RE"
    next
}
inCode { print line(literal($0, 1)); next }
/^<!--/ { next }
/^> / { next }  # a note to readers of the repository
/^# / { next }
/^## / { flush(); print ".SH \"" toupper(inline(substr($0, 4))) "\""; fresh = 1; next }
/^###+ / { flush(); sub(/^#+ /, ""); print ".SS \"" inline($0) "\""; fresh = 1; next }
/^\|[-| :]+\|$/ { next }
/^\|/ {
    flush()
    if (inTable) writeRow()
    else readHeader()
    inTable = 1
    next
}
/^$/ { flush(); inTable = 0; next }
/^- / { flush(); print ".IP \\(bu 2"; paragraph = substr($0, 3); fresh = 0; next }
{
    if (paragraph == "" && !fresh) print ".PP"
    fresh = 0
    inTable = 0
    sub(/^ +/, "")
    paragraph = paragraph (paragraph == "" ? "" : " ") $0
}
END { flush() }
