#!/bin/sh
# host_libraries_test.sh SOURCE BUILD CXX [OBJDUMP TOOLCHAIN]: the module builds against a host's own libraries, with their
# public headers and import libraries only, and what is missing of them is told. SOURCE is the project's folder, BUILD one
# where the platform is built; OBJDUMP and TOOLCHAIN are those of a Windows build, whose module takes from the system what
# the kernel library has elsewhere.
set -eu
source=$1
build=$2
compiler=$3
objdump=${4:-}
toolchain=${5:-}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
host=$folder/host
libraries="duilib ipc_client qx_logger qx_data_report accessory_update_config"
[ -n "$toolchain" ] || libraries="$libraries kernel"

# The folder of a host: headers and import libraries.
mkdir -p "$host/include" "$host/lib"
for name in $libraries; do
  cp -r "$source/platform/$name/include/$name" "$host/include/"
  library=$build/lib/lib$name.so
  [ -z "$toolchain" ] || library=$build/platform/$name/lib$name.dll.a
  cp "$library" "$host/lib/"
done
# The build makes what marks imports, but for headers that bring it.
cp "$build/platform/qx_logger/include/qx_logger/export.h" "$host/include/qx_logger/"

# configure FOLDER: into a build folder of its own; all that is said goes to FOLDER.log.
configure() {
  set -- "$1" -DCMAKE_BUILD_TYPE=Release -DBRINDLE_WARNINGS_AS_ERRORS=ON -DBRINDLE_HOST_LIBRARIES="$host"
  if [ -n "$toolchain" ]; then
    set -- "$@" -DCMAKE_TOOLCHAIN_FILE="$toolchain"
  else
    set -- "$@" -DCMAKE_CXX_COMPILER="$compiler"
  fi
  command -v ninja >/dev/null && set -- "$@" -G Ninja
  command -v ccache >/dev/null && set -- "$@" -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
  into=$1
  shift
  cmake -S "$source" -B "$into" "$@" >"$into.log" 2>&1
}

# is_told WHAT: the headers or the library were taken away; configuring must fail and name them.
is_told() {
  if configure "$folder/incomplete"; then
    echo "configuring did not fail without $1"
    exit 1
  fi
  # CMake breaks its messages into lines.
  tr -s '\n ' ' ' <"$folder/incomplete.log" | grep -q -F "$1" || {
    echo "configuring without $1 does not name it:"
    cat "$folder/incomplete.log"
    exit 1
  }
}

configure "$folder/build" && cmake --build "$folder/build" >>"$folder/build.log" 2>&1 || {
  cat "$folder/build.log"
  exit 1
}

module=$(find "$folder/build" -name 'AccessoriesUpgrade.dll' -o -name 'libAccessoriesUpgrade.so')
if [ -n "$toolchain" ]; then
  "$source/tests/exports/windows/exports_test.sh" "$module" "$objdump"
  if "$objdump" -p "$module" | grep -i 'DLL Name: kernel\.dll'; then
    echo "the module imports the kernel library, which is the system's own here"
    exit 1
  fi
else
  "$source/tests/exports/linux/exports_test.sh" "$module"
fi

made=$(cd "$folder/build/include" && echo */export.h)
case $made in
  *qx_logger*) echo "a header that the host has was made again: $made"; exit 1 ;;
  *duilib*) ;;
  *) echo "the headers that the host lacks were not made"; exit 1 ;;
esac

for name in $libraries kernel; do
  others=$(find "$folder/build" -name "$name.dll" -o -name "lib$name.so" -o -name '*.exe' | grep -v CMakeFiles || true)
  [ -z "$others" ] || { echo "more than the module was built: $others"; exit 1; }
done

for name in $libraries; do
  library=$(cd "$host/lib" && ls | grep -E "^(lib)?$name\.")
  mv "$host/lib/$library" "$folder/away"
  is_told "the library $name is missing: $host/lib"
  mv "$folder/away" "$host/lib/$library"
  mv "$host/include/$name" "$folder/away"
  is_told "$host/include/$name"
  mv "$folder/away" "$host/include/$name"
done
echo "the module was built against the host's libraries; each that is missing is told"
