#!/usr/bin/env python3
"""Writes the manual pages of section 3 from the public header.

usage: make_man.py HEADER OUTPUT-DIR

One page for each group of functions, ormidex_GROUP.3, under the name of each
function as well, and ormidex.3 that names them all.
"""

import pathlib
import re
import sys

GROUP = re.compile(r"^/\* -+ (.+?) -+ \*/$")
COMMENT = re.compile(r"/\*\*(.*?)\*/\s*(ORMIDEX_API.*?;)", re.S)
DATE = "2026-11-20"


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    text = re.sub(r"`([^`]+)`", r"\\fI\1\\fR", text)
    return "\n".join("\\&" + line if line.startswith((".", "'")) else line for line in text.splitlines())


def clean(comment):
    return "\n".join(re.sub(r"^\s*\* ?", "", line) for line in comment.strip().splitlines())


def split_groups(header):
    groups, name, lines = {}, None, []
    for line in header.splitlines():
        match = GROUP.match(line.strip())
        if match:
            name = match.group(1)
            groups[name] = lines = []
        elif name:
            lines.append(line)
    return {name: "\n".join(lines) for name, lines in groups.items()}


def tagged(line):
    match = re.match(r"@(param|retval)\s+(\S+)\s+(.*)", line)
    if match:
        return f".TP\n.B {roff(match.group(2))}\n{roff(match.group(3))}"
    return ".P\n" + roff(re.sub(r"^@remark\s+", "", line)) if line.startswith("@") else roff(line)


def describe(comment):
    lines = []
    for line in clean(comment).splitlines():
        lines.append(".P" if not line.strip() else tagged(line.strip()))
    return "\n".join(lines)


def page(name, functions):
    title = "ormidex_" + re.sub(r"[^a-z0-9]+", "_", name.lower()).strip("_")
    names = [re.search(r"Ormidex\w+(?=\()", declaration).group(0) for _, declaration in functions]
    out = [f'.TH {title.upper()} 3 "{DATE}" "Ormidex" "Library Functions"', ".SH NAME"]
    out.append(", ".join(names) + " \\- " + roff(name.lower()))
    out += [".SH SYNOPSIS", ".B #include <ormidex.h>"]
    for _, declaration in functions:
        text = re.sub(r"\s+", " ", re.sub(r"ORMIDEX_(API|CALL)\s*", "", declaration))
        out += [".PP", ".B " + roff(text)]
    out.append(".SH DESCRIPTION")
    for function, (comment, _) in zip(names, functions):
        out += [f".SS {function}", describe(comment)]
    out += [".SH SEE ALSO", ".BR ormidex (3)"]
    return title, names, "\n".join(out) + "\n"


def main():
    header = pathlib.Path(sys.argv[1]).read_text()
    folder = pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    index = [f'.TH ORMIDEX 3 "{DATE}" "Ormidex" "Library Functions"', ".SH NAME"]
    index += ["ormidex \\- control of cameras on an IEEE 1394 bus", ".SH DESCRIPTION"]
    count = 0
    for name, text in split_groups(header).items():
        functions = COMMENT.findall(text)
        if not functions:
            continue
        title, names, body = page(name, functions)
        (folder / f"{title}.3").write_text(body)
        for function in names:
            (folder / f"{function}.3").write_text(f".so man3/{title}.3\n")
        index += [".TP", f".BR {title} (3)", ", ".join(names)]
        count += len(names)
    (folder / "ormidex.3").write_text("\n".join(index) + "\n")
    if count != 97:
        sys.exit(f"make_man.py: found {count} functions in {sys.argv[1]}, expected 97")


if __name__ == "__main__":
    main()
