#!/bin/sh
# package_test.sh ZIP DEBUG_ZIP OBJDUMP: looks at the sizes and for debug information, unpacks the Windows package into an empty folder, plays its sample tour there under Wine, and expects
# every package of the sample to arrive whole. Nothing outside that folder is found but the system. $WINE is the Wine to
# use, $WINEPREFIX its Windows system; without one, a new one is made and removed.
set -eu
zip=$(realpath "${1:?no package was named}")
debug_zip=$(realpath "${2:?no package of debug information was named}")
objdump=${3:?no objdump was named}
wine=${WINE:-wine}
unset WINEPATH
export LC_ALL=C.UTF-8
export WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"

folder=$(mktemp -d)
own_system=""
finish() {
  if [ -n "$own_system" ]; then
    WINEPREFIX=$own_system wineserver -w 2>/dev/null || true
  fi
  rm -rf "$folder"
}
trap finish EXIT
trap 'exit 130' INT TERM
if [ -z "${WINEPREFIX:-}" ]; then
  own_system=$folder/wine
  export WINEPREFIX="$own_system"
fi

fail() {
  echo "package_test: $1" >&2
  exit 1
}

# A folder with a blank and letters that few code pages have.
program=$folder/"Un pack 测试 é"
mkdir "$program"
cd "$program"
cmake -E tar xf "$zip"
for file in AccessoriesUpgrade.dll settings_host.exe update_service.exe pen_studio.exe sample/catalogue.json \
  sample/installers/install.cmd components/brindle/res/layout/Tolvane.xml licences/gcc-runtime.txt licences/mingw-w64.txt \
  licences/pugixml.txt; do
  [ -s "$file" ] || fail "the package has no $file"
done
[ -z "$(find . -name '*.svg' -o -name '*.sh')" ] || fail "the package holds what Windows cannot use"

# Small, and nothing for debuggers in it; all of that is in the other package, under the names that the files refer to.
[ "$(wc -c <"$zip")" -le 8388608 ] || fail "the package is larger than 8 MiB: $(wc -c <"$zip")"
mkdir "$folder/debug"
(cd "$folder/debug" && cmake -E tar xf "$debug_zip")
for file in *.exe *.dll; do
  [ "$(wc -c <"$file")" -le 4194304 ] || fail "$file is larger than 4 MiB"
  sections=$("$objdump" -h "$file")
  ! echo "$sections" | grep -q '[.]debug_' || fail "$file has debug information inside"
  echo "$sections" | grep -q '[.]gnu_debuglink' || fail "$file does not say where its debug information is"
  "$objdump" -h "$folder/debug/$file.debug" | grep -q '[.]debug_info' || fail "there is no debug information of $file"
done

"$wine" settings_host.exe --headless >"$folder/tour.txt" 2>&1 || {
  cat "$folder/tour.txt" >&2
  fail "the tour failed"
}
for package in sample/packages/*.pkg; do
  grep -q "^arrived whole: $(basename "$package")" "$folder/tour.txt" || fail "$package did not arrive whole"
done
grep -q '^The tour is complete' "$folder/tour.txt" || fail "the tour is not complete"

# Bad input: one line that names the file, and exit code 1.
expect_error() {
  expected=$1
  shift
  code=0
  "$wine" "$@" >/dev/null 2>"$folder/error.txt" || code=$?
  [ "$code" = 1 ] || fail "$*: exit code $code"
  [ "$(wc -l <"$folder/error.txt")" = 1 ] || fail "$*: $(cat "$folder/error.txt")"
  grep -q -F "$expected" "$folder/error.txt" || fail "$*: $(cat "$folder/error.txt")"
}
expect_error 'nowhere\é.dll: the module cannot be loaded: ' settings_host.exe --headless --quiet-log --no-sample \
  --module 'nowhere\é.dll'
expect_error 'readme.dll: the module cannot be loaded: ' settings_host.exe --headless --quiet-log --no-sample \
  --module 'sample\catalogue.json\readme.dll'
expect_error 'en-US.xml:1: the file cannot be read: ' settings_host.exe --headless --quiet-log --no-sample --language en-US --components 'nowhere 测试'
expect_error '测试' settings_host.exe --headless --sample 'nowhere 测试'
expect_error 'catalogue.json: cannot be opened: ' update_service.exe --catalogue '测试\catalogue.json' --work-dir work

# A service that ends with its input, and another one on the same pipe.
mkfifo "$folder/input"
"$wine" update_service.exe --catalogue sample/catalogue.json --work-dir work --end-with-input \
  <"$folder/input" 2>"$folder/service.txt" &
service=$!
exec 3>"$folder/input"
tries=0
until grep -q 'ready' "$folder/service.txt"; do
  tries=$((tries + 1))
  [ $tries -lt 300 ] || fail "the service does not serve: $(cat "$folder/service.txt")"
  sleep 0.1
done
expect_error 'iKorvelAssistant: the name is taken by another broker' update_service.exe --catalogue sample/catalogue.json \
  --work-dir other
exec 3>&-
wait "$service" || fail "the service did not end well: $(cat "$folder/service.txt")"
grep -q 'stops: end of input' "$folder/service.txt" || fail "the service ended: $(cat "$folder/service.txt")"
echo "The package works."
