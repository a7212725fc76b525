# Sourced by test: finds tests by their names, runs them, and says at the end what became of them.

failed=""    # presets and benchmarks
unsteady=""  # PRESET:TEST
skipped=""   # PRESET:SUITE.TEST
sanitizer_report='(ERROR|WARNING): [A-Za-z]*Sanitizer|: runtime error: '

# is_declared NAME: whether CMake declares a test of that name.
is_declared() {
  grep -rqE "^ *add_[a-z_]*test\((NAME )?$1([ )]|\$)" --include=CMakeLists.txt --include='*.cmake' --exclude-dir=build .
}

# sources_of NAME: the sources with tests that GoogleTest knows under NAME: a suite, a test, or SUITE.TEST; '*' is any text.
sources_of() {
  pattern=$(printf '%s' "$1" | sed 's/[*]/[A-Za-z_0-9]*/g')
  case $pattern in
    *.*) pattern="${pattern%%.*}, *${pattern#*.}\\)" ;;
    *) pattern="($pattern,|[A-Za-z_0-9]+, *$pattern\\))" ;;
  esac
  grep -rlE "^(TYPED_)?TEST(_F|_P)?\\($pattern" --include='*.cpp' --exclude-dir=build . || true
}

# is_known NAME: whether there is such a test; nothing needs to be built for the answer.
is_known() {
  case $1 in
    *[!A-Za-z_0-9.*]*) return 1 ;;
  esac
  is_declared "$1" || [ -n "$(sources_of "$1")" ]
}

# programs_of NAME BUILD: the tests of that build folder that hold NAME.
programs_of() {
  if is_declared "$1"; then
    echo "$1"
    return
  fi
  for source in $(sources_of "$1"); do
    awk -v file="$PWD${source#.}" '
      /^ *"command": / { command = $0 }
      /^ *"file": / && index($0, "\"" file "\"") {
        sub(/.* -o [^ ]*CMakeFiles\//, "", command)
        sub(/\.dir\/.*/, "", command)
        print command
      }' "$2/compile_commands.json"
  done | sort -u
}

# filter_of NAME: what GoogleTest is to run for it: a program runs all that it has.
filter_of() {
  if is_declared "$1"; then
    echo '*'
    return
  fi
  case $1 in
    *.*) echo "$1:*/$1:$1/*:*/$1/*" ;;
    *) echo "$1.*:*/$1.*:$1/*:*.$1:*.$1/*" ;;
  esac
}

# unsteady_tests LOG: the tests that failed first and passed when CTest repeated them.
unsteady_tests() {
  awk '
    match($0, /Test +#[0-9]+: [^ ]+/) {
      name = substr($0, RSTART, RLENGTH)
      sub(/.*: /, "", name)
      if ($0 ~ /\*\*\*/) failed[name] = 1
      else if ($0 ~ / Passed +[0-9.]+ sec/ && name in failed) print name
    }' "$1"
}

# skipped_tests BUILD: the GoogleTest tests that the last run of that build folder has passed over. CTest counts their
# programs as passed.
skipped_tests() {
  sed -nE 's/^\[  SKIPPED \] ([^ ,]+).*\([0-9]+ ms\).?$/\1/p' "$1/Testing/Temporary/LastTest.log" | sort -u
}

# run_tests PRESET [CTEST_OPTION...]: as the test preset of that name says; the log is build/PRESET.tests.log.
run_tests() {
  preset=$1
  shift
  log=build/$preset.tests.log
  fixed_addresses=""  # which ThreadSanitizer knows
  setarch -R true 2>/dev/null && fixed_addresses="setarch -R"
  rm -f "$log.failed"
  { $fixed_addresses ctest --preset "$preset" "$@" || touch "$log.failed"; } | tee "$log"
  if [ -e "$log.failed" ] || grep -qE "$sanitizer_report" "$log"; then
    failed="$failed $preset"
  fi
  skipped="$skipped$(skipped_tests "build/$preset" | sed "s/^/ $preset:/" | tr -d '\n')"
  unsteady="$unsteady$(unsteady_tests "$log" | sed "s/^/ $preset:/" | tr -d '\n')"
}

# run_campaign PRESET: rounds of faults (tests/campaign, docs/testing.md).
run_campaign() {
  rounds=${CAMPAIGN_ROUNDS:-500}
  for what in messages product; do
    echo "== campaign: $rounds rounds of $what"
    "build/$1/bin/pipe_campaign" --of "$what" --rounds "$rounds" || failed="$failed campaign:$what"
    rounds=$(((rounds + 4) / 5))
  done
}

# conclude: the last lines, and the exit code.
conclude() {
  if [ -n "$skipped" ]; then
    echo "test: skipped:$skipped" >&2
  fi
  if [ -n "$unsteady" ]; then
    echo "test: unsteady, failed and then passed at once:$unsteady" >&2
  fi
  if [ -n "$failed" ]; then
    echo "test: failed:$failed" >&2
    exit 1
  fi
  echo "All tests passed."
}
