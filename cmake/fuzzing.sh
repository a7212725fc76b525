# Sourced by test: runs the fuzz targets (fuzz/, docs/testing.md) and says what they found.

# fuzz_one TARGET SECONDS: lets one target try inputs, beginning with those of fuzz/corpus and those that earlier runs have kept
# in build/fuzz/corpus. An input that something is wrong with stays in build/fuzz/findings, with TARGET.txt, which says so.
fuzz_one() (
  corpus=build/fuzz/corpus/$1
  log=build/fuzz/$1.log
  mkdir -p "$corpus" "fuzz/corpus/$1" build/fuzz/findings
  dictionary=fuzz/dictionaries/$1.dict
  [ -e "$dictionary" ] || dictionary=""
  memory=/dev/shm  # inputs are written to a file each, thousands a second
  [ -w $memory ] || memory=${TMPDIR:-/tmp}
  TMPDIR=$(mktemp -d "$memory/fuzz.XXXXXX")
  trap 'rm -rf "$TMPDIR"' EXIT
  trap 'exit 130' INT TERM
  export TMPDIR
  export ASAN_SYMBOLIZER_PATH="$(command -v llvm-symbolizer-16 || true)" UBSAN_OPTIONS=print_stacktrace=1
  export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
  export LSAN_OPTIONS=suppressions=tests/leak_suppressions.txt:print_suppressions=0
  ended=0
  "build/fuzz/targets/$1" -max_total_time="$2" -timeout=20 -rss_limit_mb=2048 ${dictionary:+-dict="$dictionary"} \
    -artifact_prefix="build/fuzz/findings/$1-" "$corpus" "fuzz/corpus/$1" >"$log" 2>&1 || ended=$?
  awk -v target="$1" '$2 == "DONE" {
    split($8, kept, "/")
    print target ": " substr($1, 2) " inputs, of which " kept[1] " go different ways: " $4 " edges, " $6 " features"
  }' "$log"
  [ "$ended" = 0 ] && return
  {
    echo "$1: FOUND something; the whole report is $log"
    grep -hE '^SUMMARY|runtime error:|this does not hold:|Test unit written to' "$log" || tail -n 5 "$log"
  } | tee "build/fuzz/findings/$1.txt"
)

# run_fuzzing: all targets that were built, two at a time.
run_fuzzing() {
  seconds=${FUZZ_SECONDS:-60}
  echo "== fuzz: $seconds seconds for each target"
  rm -f build/fuzz/findings/*.txt
  before=""
  for program in $(find build/fuzz/targets -name '*_fuzz' | sort); do
    fuzz_one "${program##*/}" "$seconds" &
    [ -z "$before" ] || wait "$before"
    before=$!
  done
  wait "$before"
  for program in $(find build/fuzz/targets -name '*_fuzz' | sort); do
    [ ! -e "build/fuzz/findings/${program##*/}.txt" ] || failed="$failed ${program##*/}"
  done
}
