#!/bin/sh
# hardening_test.sh READELF FILE...: every file binds at its start, in memory that is then read-only, has no executable stack
# and checks its own; programs lie at any address; buffers are checked where the compiler knows their sizes.
set -eu
export LC_ALL=C
readelf=$1
shift

fail() {
  echo "hardening_test: $1" >&2
  exit 1
}

checks_buffers=no
for file in "$@"; do
  headers=$("$readelf" --wide --file-header --program-headers --dynamic "$file")
  symbols=$("$readelf" --wide --dyn-syms "$file")
  echo "$headers" | grep -qE 'Type: +DYN' || fail "$file has a fixed address"
  echo "$headers" | grep -q GNU_RELRO || fail "$file has no memory that becomes read-only"
  echo "$headers" | grep -qE '\(FLAGS\).*BIND_NOW|\(FLAGS_1\).* NOW' || fail "$file binds late"
  echo "$headers" | grep GNU_STACK | grep -q 'RW ' || fail "$file says nothing about its stack"
  ! echo "$headers" | grep GNU_STACK | grep -q 'RWE' || fail "$file has an executable stack"
  echo "$symbols" | grep -q __stack_chk_fail || fail "$file does not check its stack"
  if echo "$symbols" | grep -qE ' __[a-z]+_chk(@|$)'; then
    checks_buffers=yes
  fi
done
[ $checks_buffers = yes ] || fail "no file checks its buffers"
echo "All are hardened."
