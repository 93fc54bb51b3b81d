#!/usr/bin/env python3
"""Runs what the documents show: blocks of shell commands and of C.

usage: commands_test.py SOURCE-DIR BUILD-DIR

Each block runs in a folder that looks like the sources, with the tool, library and
Python module installed, and must succeed. A block that cannot run here has
"<!-- not run here: REASON -->" in the line above it. Targets of make, scripts and
subcommands that are named within a sentence must exist.
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import NamedTuple

LANGUAGES = {"sh", "c", "python", "text"}
NOT_RUN = re.compile(r"<!-- not run here: (.+) -->$")
C_PROGRAM = """#include <ormidex.h>
static unsigned char frame[640 * 480], image[640 * 480 * 3];
int main(void) {
%s
  return 0;
}
"""


class Block(NamedTuple):
    place: str
    language: str
    reason: str  # why it is not run; empty when it is
    text: str


def read_blocks(name, text):
    """The fenced blocks of a document, and what is wrong with their form."""
    blocks, faults, reason, block = [], [], "", None
    previous = ""
    for number, line in enumerate(text.splitlines(), 1):
        fence = re.match(r" *```(\w*)$", line)
        if fence and block is None:
            block = (f"{name}:{number}", fence[1], reason, [])
            if fence[1] not in LANGUAGES:
                faults.append(f"{name}:{number}: the block names no language of {LANGUAGES}")
        elif fence:
            blocks.append(Block(*block[:3], "\n".join(block[3]) + "\n"))
            block = None
        elif block is not None:
            block[3].append(line)
        elif line.startswith("    ") and not previous.strip():
            faults.append(f"{name}:{number}: an indented block; fence it and name its language")
        marker = NOT_RUN.search(line)
        reason = marker[1] if marker else ""
        previous = line
    return blocks, faults


def inline_faults(name, text, source):
    """What sentences name and is not there."""
    targets = set(re.findall(r"^([a-z-]+):", (source / "Makefile").read_text(), re.M))
    commands = set(re.findall(r'add_subcommand\(\s*"([\w-]+)"', "".join(
        path.read_text() for path in (source / "tools/ormidex").glob("*.cpp"))))
    for code in re.findall(r"`([^`\n]+)`", text):
        words = code.split()
        if words[0] == "make":
            for word in words[1:]:
                if "=" not in word and word not in targets:
                    yield f"{name}: there is no target of '{code}'"
        elif words[0] == "ormidex" and len(words) > 1 and words[1][0] != "-":
            if words[1] not in commands:
                yield f"{name}: there is no command of '{code}'"
        elif re.match(r"(scripts|tests|src|examples|docs|include|cmake|tools)/", words[0]):
            if not list(source.glob(words[0].rstrip("/"))):
                yield f"{name}: there is no '{words[0]}'"


def make_tree(folder, source, build):
    """A folder like the sources, whose build/release is this build."""
    tree = folder / "tree"
    (tree / "build").mkdir(parents=True)
    (tree / "build/release").symlink_to(build)
    for entry in source.iterdir():
        if entry.name not in ("build", ".git", "dist"):
            (tree / entry.name).symlink_to(entry)
    return tree


def make_environment(folder, build):
    prefix = folder / "installed"
    subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    libraries = next(prefix.rglob("libormidex.so")).parent
    modules = next(prefix.rglob("ormidex/__init__.py")).parent.parent
    environment = {key: value for key, value in os.environ.items()
                   if key not in ("ORMIDEX_SIMULATOR", "ORMIDEX_TRACE")}
    environment.update(
        PATH=f"{prefix}/bin:/usr/bin:/bin", LD_LIBRARY_PATH=str(libraries),
        PKG_CONFIG_PATH=str(libraries / "pkgconfig"), PYTHONPATH=str(modules))
    return environment


def run(block, tree, environment):
    """What went wrong, or nothing."""
    if block.language == "c":
        program = tree / "block.c"
        program.write_text(C_PROGRAM % block.text)
        script = ("cc block.c $(pkg-config --cflags --libs ormidex) -o block\n"
                  "ORMIDEX_SIMULATOR=1 ./block\ntest -s first.bmp\n")
    else:
        script = block.text
    done = subprocess.run(["bash", "-eu", "-o", "pipefail", "-c", script], cwd=tree,
                          env=environment, capture_output=True, text=True, timeout=120)
    if done.returncode == 0:
        return ""
    return f"exit code {done.returncode}\n{block.text}{done.stdout}{done.stderr}"


def main(source, build):
    passed, failures = 0, []
    documents = [source / "README.md", source / "CONTRIBUTING.md", source / "SECURITY.md"]
    blocks = []
    for document in documents + sorted((source / "docs").glob("*.md")):
        name, text = str(document.relative_to(source)), document.read_text(encoding="utf-8")
        found, faults = read_blocks(name, text)
        blocks += found
        failures += faults + list(inline_faults(name, text, source))
    with tempfile.TemporaryDirectory() as folder:
        tree = make_tree(Path(folder), source, build)
        environment = make_environment(Path(folder), build)
        for block in blocks:
            if block.language not in ("sh", "c"):
                continue
            if block.reason:
                print(f"{block.place}: not run here: {block.reason}")
                continue
            fault = run(block, tree, environment)
            passed += not fault
            failures += [f"{block.place}: {fault}"] if fault else []
    for failure in failures:
        print("FAILED", failure)
    print(f"{passed} passed, {len(failures)} failed")
    return 1 if failures or passed == 0 else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2])))
