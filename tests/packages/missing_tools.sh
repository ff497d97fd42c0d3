#!/bin/sh
# tests/packages/missing_tools.sh SOURCES: without any one of its tools scripts/package says which, and nothing is made.
set -eu
sources=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
bash=$(command -v bash)
mkdir "$work/tools"
for tool in dirname $(sed -n "/^  done <<'TOOLS'/,/^TOOLS/s/^\([a-z][^ ]*\) [^ ]*$/\1/p" "$sources/scripts/package"); do
  ln -s "$(command -v "$tool" || echo /bin/true)" "$work/tools/$tool"
done
says() {  # EXPECTED
  said=$(PATH=$work/tools "$bash" "$sources/scripts/package" --tools 2>&1) && code=0 || code=$?
  [ "$code: $said" = "$1" ] || { echo "says $code: $said, not $1" && failed=1; }
}
says "0: "
for missing in "dh debhelper" "dpkg-buildpackage dpkg-dev" "makensis nsis" "zip zip"; do
  mv "$work/tools/${missing% *}" "$work/kept"
  says "1: scripts/package: ${missing% *} is missing; it comes with the package ${missing#* }"
  mv "$work/kept" "$work/tools/${missing% *}"
done
exit $failed
