#!/usr/bin/env bash
# Installs into an empty folder, moves it, and builds and runs the examples against
# the moved copy: C and C++, by pkg-config and by CMake, and Python.
#
# usage: install_test.sh SOURCE-DIR BUILD-DIR
set -u
source=$1
build=$2
source "$(dirname "$0")/../support/steps.sh"

step "install" env DESTDIR="$folder/stage" cmake --install "$build"
mv "$folder/stage"/* "$folder/moved"
prefix=$(dirname "$(dirname "$(find "$folder/moved" -name ormidex.h)")")
libdir=$(dirname "$(find "$folder/moved" -name 'libormidex.so')")
export LD_LIBRARY_PATH=$libdir PKG_CONFIG_PATH=$libdir/pkgconfig ORMIDEX_SIMULATOR=pace=fast
unset ORMIDEX_TRACE

step "pkg-config knows the version" pkg-config --exact-version=1.0.0 ormidex
read -ra flags <<< "$(pkg-config --cflags --libs ormidex)"
step "C by pkg-config" cc "$source/examples/c/first_picture.c" "${flags[@]}" -o "$folder/c"
step "C++ by pkg-config" \
  c++ -std=c++20 "$source/examples/cpp/first_picture.cpp" "${flags[@]}" -o "$folder/cpp"
for example in c cpp; do
  step "$example by CMake, configured" cmake -S "$source/examples/$example" \
    -B "$folder/$example-build" -DCMAKE_PREFIX_PATH="$prefix"
  step "$example by CMake, built" cmake --build "$folder/$example-build"
done
for program in "$folder/c" "$folder/cpp" "$folder/c-build/first_picture" \
  "$folder/cpp-build/first_picture"; do
  step "the program runs" "$program" "$folder/picture.bmp"
  step "its picture has its size" test "$(stat -c %s "$folder/picture.bmp")" = $((54 + 921600))
  rm -f "$folder/picture.bmp"
done
step "each function has a manual page" test \
  "$(grep -l '^[.]so man3/ormidex_' "$prefix"/share/man/man3/Ormidex*.3 | wc -l)" = 97
step "a function's page is its group's" grep -q OrmidexSetGamma \
  "$prefix/share/man/$(sed -n 's/^[.]so //p' "$prefix/share/man/man3/OrmidexSetGamma.3")"
step "the tool runs" "$prefix/bin/ormidex" list
export PYTHONPATH
PYTHONPATH=$(dirname "$(dirname "$(find "$folder/moved" -name '__init__.py')")")
# Debian's python3 looks into some folders of each prefix only.
python_finds() {
  /usr/bin/python3 -c 'import sys; sys.exit(sys.argv[1] not in sys.path)' \
    "/usr/local/${PYTHONPATH#"$prefix/"}"
}
step "Python looks where the module is" python_finds
# The system's Python: numpy is a package of the system.
step "Python" /usr/bin/python3 "$source/examples/python/first_picture.py" "$folder/picture.bmp"
step "its picture has its size" test "$(stat -c %s "$folder/picture.bmp")" = $((54 + 921600))

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
