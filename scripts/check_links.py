#!/usr/bin/env python3
"""Fails when a page of a folder refers to a file that is not there.

usage: check_links.py FOLDER
"""

import re
import sys
from pathlib import Path
from urllib.parse import unquote

REFERENCE = re.compile(r'(?:href|src)="([^"#?]+)')


def main(folder):
    pages = sorted(Path(folder).glob("*.html"))
    missing = set()
    for page in pages:
        for target in REFERENCE.findall(page.read_text(encoding="utf-8")):
            if not re.match(r"[a-z]+:", target) and not (page.parent / unquote(target)).exists():
                missing.add(f"{page.name} refers to {target}, which does not exist")
    for line in sorted(missing):
        print(line)
    if not pages:
        print(f"{folder} has no pages")
    return 1 if missing or not pages else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
