#!/bin/sh
# strip_programs.sh OBJCOPY FOLDER DEBUG FILE...: puts the programs and libraries without debug information into FOLDER, and
# what debuggers want to know into DEBUG, NAME.debug for each NAME, which the stripped one refers to.
set -eu
objcopy=$1
folder=$2
debug=$3
shift 3
rm -rf "$folder" "$debug"
mkdir -p "$folder" "$debug"
for file in "$@"; do
  name=${file##*/}
  "$objcopy" --only-keep-debug "$file" "$debug/$name.debug"
  (cd "$debug" && "$objcopy" --strip-all --add-gnu-debuglink="$name.debug" "$file" "$folder/$name")
done
