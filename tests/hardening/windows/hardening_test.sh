#!/bin/sh
# hardening_test.sh OBJDUMP FILE...: every file lies at any address of 64 bits, and executes no data.
set -eu
export LC_ALL=C
objdump=$1
shift
for file in "$@"; do
  headers=$("$objdump" -p "$file")
  for mark in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
    if ! echo "$headers" | grep -q "^[[:space:]]*$mark"; then
      echo "hardening_test: $file lacks $mark" >&2
      exit 1
    fi
  done
done
echo "All are hardened."
