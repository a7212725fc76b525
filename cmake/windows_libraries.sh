#!/bin/sh
# Makes build/windows-libraries: the third-party libraries of the Windows build. pugixml and GoogleTest are compiled from
# Debian's own sources, the others are headers alone and taken from Debian's packages. Does nothing when it is there
# already; a change of this file or of those packages makes it anew.
set -eu
cd "$(dirname "$0")/.."

pugixml_version=1.13-0.2
googletest_version=1.12.1-0.2
header_packages="libasio-dev libspdlog-dev libfmt-dev nlohmann-json3-dev libcli11-dev"
target=$PWD/build/windows-libraries
stamp=$({
  sha256sum cmake/windows_libraries.sh cmake/mingw.cmake cmake/windows/*.cmake
  dpkg-query -W $header_packages
} | sha256sum)
[ "$(cat "$target/stamp" 2>/dev/null)" = "$stamp" ] && exit 0
rm -rf "$target"
mkdir -p "$target/include" "$target/lib/cmake" "$target/source"

# Debian's source packages, without a change to the system's own list of them.
fetch_source() {
  apt=$target/apt
  mkdir -p "$apt/lists/partial"
  echo "deb-src http://deb.debian.org/debian bookworm main" >"$apt/sources.list"
  set -- "$1" -o Dir::Etc::SourceList="$apt/sources.list" -o Dir::Etc::SourceParts=- -o Dir::State::Lists="$apt/lists" \
    -o APT::Sandbox::User=
  package=$1
  shift
  apt-get "$@" update -qq
  (cd "$target/source" && apt-get "$@" source -qq --download-only "$package")
}

# build SOURCE [OPTION...]: compiles and installs a CMake project for Windows.
build() {
  source=$1
  shift
  binary=$target/build/$(basename "$source")
  cmake -S "$source" -B "$binary" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$target" "$@" >"$target/build.log" 2>&1 &&
    cmake --build "$binary" >>"$target/build.log" 2>&1 && cmake --install "$binary" >>"$target/build.log" 2>&1 || {
    cat "$target/build.log" >&2
    exit 1
  }
}

echo "Making the libraries of the Windows build"
fetch_source "pugixml=$pugixml_version"
tar -C "$target/source" -xf "$target/source/pugixml_${pugixml_version%-*}.orig.tar.gz"
build "$(echo "$target"/source/pugixml-*)" -DBUILD_SHARED_LIBS=OFF
fetch_source "googletest=$googletest_version"
tar -C "$target/source" -xf "$target/source/googletest_${googletest_version%-*}.orig.tar.gz"
build "$(echo "$target"/source/googletest-*)" -DBUILD_SHARED_LIBS=OFF

for headers in asio asio.hpp spdlog fmt nlohmann CLI; do
  cp -r "/usr/include/$headers" "$target/include/"
done
for config in cmake/windows/*Config.cmake; do
  name=$(basename "$config" Config.cmake)
  mkdir -p "$target/lib/cmake/$name"
  cp "$config" "$target/lib/cmake/$name/"
done
echo "$stamp" >"$target/stamp"
