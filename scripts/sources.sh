#!/bin/sh
# Lists the C and C++ sources of the project, one a line.
cd "$(dirname "$0")/.." || exit 1
git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp'
