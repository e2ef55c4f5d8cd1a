"""Makes the manual page of vantrelctl of its document.

    manpage.py command.md VERSION DATE >vantrelctl.1

It knows what that document uses of Markdown: headings, paragraphs, lists, indented code, tables of two columns, and in
a line `code`, **bold** and links, of which the text is left.
"""

import re
import sys
from pathlib import Path


def inline(text):
    """A line of text as a manual page has it."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    text = re.sub(r"\[([^\]]*)\]\(\S+?\)", r"\1", text)
    text = re.sub(r"`([^`]*)`|\*\*([^*]*)\*\*", lambda found: rf"\fB{found[1] or found[2]}\fR", text)
    return protected(text)


def protected(line):
    """A line that isn't taken for a request."""
    return rf"\&{line}" if line.startswith((".", "'")) else line


def code(lines):
    escaped = (protected(line[4:].replace("\\", "\\e").replace("-", "\\-")) for line in lines)
    return [".PP", ".RS 4", ".nf", *escaped, ".fi", ".RE"]


def table(lines):
    """Each row as a term and what it means; the head says nothing that the terms don't."""
    rows = [[cell.strip() for cell in line.strip("|").replace(r"\|", "\0").split("|")] for line in lines[2:]]
    return [part for term, meaning in rows for part in (".TP", inline(term), inline(meaning) or r"\&")]


def block(lines):
    first = lines[0]
    if first.startswith("### "):
        return [".SS " + inline(f'"{first[4:]}"')]
    if first.startswith("## "):
        return [".SH " + inline(first[3:]).upper()]
    if first.startswith("    "):
        return code(lines)
    if first.startswith("|"):
        return table(lines)
    if first.startswith("- "):
        items = re.split(r"^- ", "\n".join(lines), flags=re.MULTILINE)[1:]
        return [part for item in items for part in (r".IP \(bu 2", inline(" ".join(item.split())))]
    return [".PP", inline(" ".join(lines))]


def blocks(text):
    for part in re.split(r"\n\s*\n", text.strip()):
        yield part.split("\n")


def page(document, version, date):
    (title, *_), introduction, *rest = blocks(document)
    purpose = " ".join(introduction).split(":")[0]
    commands = [lines[0][4:] for lines in rest if lines[0].startswith("### ")]
    usages = [part for command in commands for part in (inline(f"**vantrelctl** {command}"), ".br")]
    return "\n".join([f'.TH {title[2:].upper()} 1 "{date}" "Vantrel {version}" "Vantrel codec"',
                      ".SH NAME", inline(f"{title[2:]} - {purpose[0].lower()}{purpose[1:]}").replace(r"\- ", r"\- ", 1),
                      ".SH SYNOPSIS", *usages[:-1],
                      ".SH DESCRIPTION", *block(introduction)[1:],
                      *(line for lines in rest for line in block(lines)),
                      ".SH SEE ALSO", r"\fBdefaults\fR(1)", ""])


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.stdout.write(page(Path(sys.argv[1]).read_text(encoding="utf-8"), *sys.argv[2:]))
