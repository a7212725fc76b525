#!/bin/sh
# outer_project_test.sh PROJECT FOLDER [CMAKE_OPTION...]: builds the module inside a project that has PROJECT as a part, in
# FOLDER, without test libraries.
set -eu
project=$1
folder=$2
shift 2

fail() {
  echo "outer_project_test: $1" >&2
  exit 1
}

rm -rf "$folder"
cmake -G Ninja -S "$(dirname "$0")/outer" -B "$folder" -DACCESSORY_UPDATE_PAGE="$project" "$@" \
  -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON
cmake --build "$folder" --target outer
"$folder/programs/outer" || fail "the outer program does not run"
[ -e "$folder/accessory_update_page/lib/libAccessoriesUpgrade.so" ] || fail "the module is not in the folder of its project"
[ "$(ls "$folder/programs")" = outer ] || fail "the outer project's folder has more in it: $(ls "$folder/programs")"
[ ! -e "$folder/bin" ] && [ ! -e "$folder/lib" ] || fail "something was put beside the outer project's own folders"
ctest --test-dir "$folder" -N | grep -q '^Total Tests: 0$' || fail "the outer project got tests"
echo "The project can be a part of a larger one."
