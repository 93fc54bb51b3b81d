#!/usr/bin/env bash
# Looks at the Debian packages in dist/ as an archive's keeper does (lintian), then
# unpacks them into an empty root and uses what is there: tool, C, C++ and Python.
#
# usage: package_test.sh SOURCE-DIR
set -u
source=$1
dist=$source/dist
source "$(dirname "$0")/../support/steps.sh"
root=$folder/root

# depends PACKAGE PATTERN: what the package asks for.
depends() { dpkg-deb -f "$dist/$1"_*.deb Depends | grep -qE "$2"; }

has_picture() { [ "$(stat -c %s "$folder/picture.bmp")" = $((54 + 640 * 480 * 3)) ]; }

# No file may be in two packages.
no_conflicts() {
  local package
  for package in "$dist"/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -t | grep -v '/$'
  done | sort | uniq -d > "$folder/twice"
  cat "$folder/twice"
  [ ! -s "$folder/twice" ]
}

for package in libormidex1 libormidex-dev ormidex-tools python3-ormidex; do
  step "$package is built" ls "$dist/$package"_*.deb
  step "$package is unpacked" dpkg-deb -x "$dist/$package"_*.deb "$root"
done
# The packages are not uploaded to Debian, so that there is no request to close.
step "lintian accepts them" lintian --fail-on error,warning --allow-root \
  --suppress-tags initial-upload-closes-no-bugs "$dist"/*.deb
step "no file is in two packages" no_conflicts
step "the library asks for the C library" depends libormidex1 'libc6 \(>= '
step "the tool asks for the library" depends ormidex-tools 'libormidex1 \(>= 1\.0\.0\)'
step "the headers ask for just their library" depends libormidex-dev 'libormidex1 \(= 1\.0\.0-'
step "the Python module asks for numpy" depends python3-ormidex 'python3-numpy'

libdir=$(dirname "$(find "$root/usr/lib" -name 'libormidex.so.1')")
export LD_LIBRARY_PATH=$libdir ORMIDEX_SIMULATOR=pace=fast
export PKG_CONFIG_PATH=$libdir/pkgconfig PYTHONPATH=$root/usr/lib/python3/dist-packages
unset ORMIDEX_TRACE
step "the tool lists cameras" "$root/usr/bin/ormidex" list
step "the tool takes a picture" "$root/usr/bin/ormidex" capture -o "$folder/picture.bmp"
step "of its size" has_picture

read -ra flags <<< "$(pkg-config --cflags --libs ormidex)"
step "C builds" cc "$source/examples/c/first_picture.c" "${flags[@]}" -o "$folder/c"
step "C++ builds" \
  c++ -std=c++20 "$source/examples/cpp/first_picture.cpp" "${flags[@]}" -o "$folder/cpp"
for program in "$folder/c" "$folder/cpp"; do
  rm -f "$folder/picture.bmp"
  step "the program runs" "$program" "$folder/picture.bmp"
  step "its picture has its size" has_picture
done
rm -f "$folder/picture.bmp"
step "Python runs" /usr/bin/python3 "$source/examples/python/first_picture.py" \
  "$folder/picture.bmp"
step "its picture has its size" has_picture
step "the tool has a manual page" test -s "$root/usr/share/man/man1/ormidex.1.gz"
step "the functions have manual pages" test -s "$root/usr/share/man/man3/ormidex.3.gz"

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
