#!/usr/bin/env bash
# Packs what an application's developer on Windows needs into
# dist/ormidex-win32.zip, from the windows build.
set -euo pipefail
source "$(dirname "$0")/windows-common.sh"
cd "$project"

readonly build=build/windows
readonly target=i686-w64-mingw32
# The root is this script's own and made anew each time.
readonly package=dist/ormidex-win32

# The module definition of applications' import libraries: the decorated names
# that compilers call, and the undecorated ones that the library exports.
make_import_libraries() {
  cp "$build/src/frame/ormidex.def" "$package/lib/ormidex.def"
  # MinGW's linker looks for libNAME.dll.a, Microsoft's for NAME.lib.
  cp "$build/src/frame/libormidex.dll.a" "$package/lib/libormidex.dll.a"
  python3 scripts/import_library.py src/frame/export_table.inc ormidex.dll "$package/lib/ormidex.lib"
}

# As a user compiles it, from nothing but the package.
make_example() {
  cp examples/c/first_picture.c "$package/example/"
  "$target-gcc-win32" -O2 -march=i686 -static -I "$package/include" \
    "$package/example/first_picture.c" "$package/lib/ormidex.lib" \
    -o "$package/bin/first_picture.exe"
}

rm -rf "$package" "$package.zip"
mkdir -p "$package"/{bin,lib,include,example}
cp "$build/src/frame/ormidex.dll" "$build/tools/ormidex/ormidex.exe" "$package/bin/"
"$target-strip" "$package/bin/ormidex.dll" "$package/bin/ormidex.exe"
cp include/ormidex.h "$package/include/"
cp LICENSE "$package/LICENSE.txt"
cp scripts/install-windows.txt "$package/INSTALL.txt"
make_import_libraries
make_example
"$target-strip" "$package/bin/first_picture.exe"
# Windows programs of the time want their line ends.
sed -i 's/\r*$/\r/' "$package"/*.txt "$package"/include/*.h "$package"/example/*.c
(cd dist && zip -q -r -X ormidex-win32.zip ormidex-win32)
say "packed $package.zip"
