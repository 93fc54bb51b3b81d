#!/usr/bin/env python3
"""Checks that vector instructions stay where a run-time test guards them.

usage: check_vector_code.py OBJDUMP LIBRARY

The library must run on a processor without them. A file that is compiled for a
newer processor may bring along a copy of a shared inline function, and the linker
may then take that copy for everybody. So a function with vector instructions must
belong to its file alone, or name its instruction set; libjpeg's have a prefix.
"""

import re
import subprocess
import sys

FUNCTION = re.compile(r"^[0-9a-f]+ <(.*)>:$")
VECTOR = re.compile(r"%[xyz]mm\d|%mm[0-7]|\temms")
GUARDED = re.compile(r"\(anonymous namespace\)|(Sse2|Ssse3|Avx2|Avx512)(\(|\b)|^jsimd_|^\.\.@")
# The compiler's tables stand among the code of a Windows library: bytes that may read
# like any instruction.
TABLE = ".gcc_except_table"
# A library without any such code would pass for want of something to look at.
FEWEST = 20


def functions_with_vector_code(objdump, library):
    text = subprocess.run([objdump, "-d", "-C", "--no-show-raw-insn", library], check=True,
                          capture_output=True, text=True).stdout
    found, function = set(), None
    for line in text.splitlines():
        if match := FUNCTION.match(line):
            function = match[1]
        elif function != TABLE and VECTOR.search(line):
            found.add(function)
    return found


def main(objdump, library):
    found = functions_with_vector_code(objdump, library)
    shared = sorted(name for name in found if not GUARDED.search(name))
    for name in shared:
        print(f"vector instructions without a guard: {name}")
    print(f"{len(found)} functions with vector instructions, {len(shared)} of them shared")
    return 1 if shared or len(found) < FEWEST else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
