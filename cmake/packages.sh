# Sourced by run and test: what the project needs from Debian, and how it gets there.

run_packages="g++ cmake ninja-build pkg-config libpugixml-dev libpango1.0-dev librsvg2-dev libsdl2-dev libasio-dev libspdlog-dev
  nlohmann-json3-dev libcli11-dev libssl-dev libsystemd-dev fonts-noto-core fonts-noto-cjk"
test_packages="$run_packages libgtest-dev libgmock-dev libbenchmark-dev dbus libxtst-dev xvfb clang-16 libclang-rt-16-dev
  llvm-16 binutils ccache python3"
check_packages="clang-format-14 clang-tidy-16 git"
model_packages="spin gcc"
windows_packages="g++ g++-mingw-w64-x86-64-posix cmake ninja-build dpkg-dev libasio-dev libspdlog-dev libfmt-dev
  nlohmann-json3-dev libcli11-dev libgtest-dev libgmock-dev librsvg2-bin fonts-noto-core fonts-noto-cjk wine wine64 xvfb
  ccache"

# install_packages NAME...: installs those that are missing; says what to install where it cannot.
install_packages() {
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "This system has no apt-get. Please install the equivalents of:" $* >&2
    echo "and run this again with BRINDLE_SKIP_INSTALL=1." >&2
    [ -n "${BRINDLE_SKIP_INSTALL:-}" ] && return 0
    exit 1
  fi
  missing=""
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing="$missing $package"
  done
  [ -z "$missing" ] && return 0
  as_root=""
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
      echo "Please install, as root: apt-get install$missing" >&2
      exit 1
    fi
    as_root=sudo
  fi
  echo "Installing:$missing"
  $as_root apt-get update -qq
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# configure_preset NAME [OPTION...]: with ccache where there is one; it is told that headers compiled ahead are no obstacle.
configure_preset() {
  preset=$1
  shift
  launcher=""
  command -v ccache >/dev/null 2>&1 && launcher="-DCMAKE_CXX_COMPILER_LAUNCHER=env;CCACHE_SLOPPINESS=pch_defines,time_macros;ccache"
  cmake --preset "$preset" ${launcher:+"$launcher"} "$@" >"build/$preset.configure.log" 2>&1 || {
    cat "build/$preset.configure.log" >&2
    exit 1
  }
}
