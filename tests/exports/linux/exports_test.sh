#!/bin/sh
# exports_test.sh MODULE: the module exports exactly its three symbols, and needs nothing but the platform libraries, the
# C++ runtime and the system (a sanitizer's runtime, in a sanitizer's build).
set -eu
module=$1
failed=0

exports=$(nm -D --defined-only "$module" | awk '{print $3}' | sort)
expected=$(printf '%s\n' CreateSetting _Z8CloseWndv _ZN21AccessoriesUpgradeImpaSERKS_ | sort)
if [ "$exports" != "$expected" ]; then
  printf '%s exports:\n%s\nexpected:\n%s\n' "$module" "$exports" "$expected"
  failed=1
fi

for needed in $(readelf -d "$module" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
  case $needed in
    libkernel.so|libduilib.so|libipc_client.so|libqx_logger.so|libqx_data_report.so|libaccessory_update_config.so) ;;
    libstdc++.so.*|libgcc_s.so.*|libc.so.*|libm.so.*|ld-linux-*) ;;
    libasan.so.*|libubsan.so.*) ;;
    *) echo "$module needs $needed"; failed=1 ;;
  esac
done
[ $failed = 0 ] && echo "three exports, only platform libraries"
exit $failed
