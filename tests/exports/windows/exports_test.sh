#!/bin/sh
# exports_test.sh MODULE OBJDUMP: the Windows module exports exactly its three symbols, under the platform compiler's
# names, and needs nothing but the platform libraries, the C++ runtime and the system.
set -eu
module=$1
objdump=$2
failed=0

exports=$("$objdump" -p "$module" | awk '/^\[Ordinal\/Name Pointer\] Table/ { table = 1; next } table && /^$/ { exit }
  table && /\[ *[0-9]+\]/ { print $NF }' | sort)
expected=$(printf '%s\n' CreateSetting '?CloseWnd@@YAXXZ' '??4AccessoriesUpgradeImp@@QEAAAEAV0@AEBV0@@Z' | sort)
if [ "$exports" != "$expected" ]; then
  printf '%s exports:\n%s\nexpected:\n%s\n' "$module" "$exports" "$expected"
  failed=1
fi

imports=$("$objdump" -p "$module" | sed -n 's/.*DLL Name: //p')
for needed in $imports; do
  case $needed in
    kernel.dll|duilib.dll|ipc_client.dll|qx_logger.dll|qx_data_report.dll|accessory_update_config.dll) ;;
    libstdc++-6.dll|libgcc_s_seh-1.dll|libwinpthread-1.dll|KERNEL32.dll|msvcrt.dll|api-ms-win-crt-*.dll) ;;
    *) echo "$module needs $needed"; failed=1 ;;
  esac
done
for platform in duilib ipc_client qx_logger qx_data_report accessory_update_config; do
  echo "$imports" | grep -q -x "$platform.dll" || { echo "$module does not import $platform.dll"; failed=1; }
done
[ $failed = 0 ] && echo "three exports, only platform libraries"
exit $failed
