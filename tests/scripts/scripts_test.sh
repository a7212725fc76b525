#!/bin/sh
# scripts_test.sh PROJECT: what ./run and ./test say to their options, and what becomes of failed and unsteady tests.
set -eu
project=$1
cd "$project"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trap 'exit 130' INT TERM
unset GTEST_FILTER

fail() {
  echo "scripts_test: $1" >&2
  cat "$folder/output" >&2
  exit 1
}

# expect CODE TEXT COMMAND...: that exit code, and TEXT in what the command prints.
expect() {
  code=$1
  text=$2
  shift 2
  got=0
  "$@" >"$folder/output" 2>&1 || got=$?
  [ "$got" = "$code" ] || fail "$* ends with $got, not with $code"
  grep -qF -e "$text" "$folder/output" || fail "$* does not print '$text'"
}

for script in run test; do
  expect 0 "./$script" "./$script" --help
  expect 0 "./$script" "./$script" -h
  expect 2 "$script: unknown option --nonsense" "./$script" --nonsense
done
expect 2 'run: unknown option nonsense' ./run nonsense
expect 2 'test: unknown option --nonsense' ./test release --nonsense
for name in no_such_test NoSuchSuite NoSuchSuite.NoSuchTest 'No*Such' 'a;b' 'a b' ''; do
  expect 2 "test: no preset, test program or test is called $name" ./test release "$name"
done

# Tests are found by program, suite, test, both, and with stars.
. cmake/testing.sh
for name in source_rules_test RoomTable ARoomIncludesItselfAndWhatItsRowNames \
  RoomTable.ARoomIncludesItselfAndWhatItsRowNames 'Room*.ARoom*'; do
  is_known "$name" || fail "$name is not known"
done

# The sources' format is judged by one version only. The one here calls every source well formatted.
. cmake/check_sources.sh
# format_by VERSION
format_by() (
  printf '#!/bin/sh\necho "Debian clang-format version %s"\n' "$1" >"$folder/clang-format-14"
  chmod +x "$folder/clang-format-14"
  PATH=$folder:$PATH
  mkdir -p build
  check_format
  conclude
)
expect 0 "format (clang-format-14 $format_version)" format_by "$format_version"
expect 1 'test: failed: format' format_by 14.0.0
expect 1 "clang-format-14 is version 14.0.0 here, and the sources are formatted by $format_version" format_by 14.0.0
expect 1 'clang-format-14 is version unknown here' format_by none

# A project of three tests under this one's presets: one passes, one fails the first time, one fails.
mkdir -p "$folder/build/release"
cp CMakePresets.json "$folder"
cat >"$folder/build/release/CTestTestfile.cmake" <<END
add_test(steady true)
add_test(unsteady sh -c "mkdir '$folder/first' && exit 1; exit 0")
add_test(broken false)
END
# tests_in_folder [CTEST_OPTION...]
tests_in_folder() (
  cd "$folder"
  rm -rf first
  run_tests release "$@"
  conclude
)
expect 0 'test: unsteady, failed and then passed at once: release:unsteady' tests_in_folder -E broken
expect 0 '100% tests passed, 0 tests failed out of 2' tests_in_folder -E broken
expect 1 'test: failed: release' tests_in_folder
expect 1 '1 tests failed out of 3' tests_in_folder
expect 0 'All tests passed.' tests_in_folder -R '^steady'
! grep -q unsteady "$folder/output" || fail "a steady test is called unsteady"

# Tests that a program has passed over are named, and no others.
cat >"$folder/build/release/CTestTestfile.cmake" <<END
add_test(skips printf "%s\n" "[       OK ] Suite.Runs (3 ms)" "[  SKIPPED ] Suite.OfRoot (0 ms)" "[  SKIPPED ] 2 tests, listed below:"
  "[  SKIPPED ] Suite.OfRoot" "[  SKIPPED ] Suites/Every.One/pipe, where GetParam() = 1 (0 ms)")
add_test(steady true)
END
expect 0 'test: skipped: release:Suite.OfRoot release:Suites/Every.One/pipe' tests_in_folder
expect 0 'All tests passed.' tests_in_folder
expect 0 'All tests passed.' tests_in_folder -E skips
! grep -q skipped "$folder/output" || fail "there is no skipped test, but one is named"

# What a sanitizer reports fails the run even when the test passes the second time.
cat >"$folder/build/release/CTestTestfile.cmake" <<END
add_test(race sh -c "mkdir '$folder/first' && echo 'WARNING: ThreadSanitizer: data race' && exit 1; exit 0")
END
expect 1 'test: failed: release' tests_in_folder
# Of the fuzz targets one finds nothing, one finds something, and one that a library is missing for does not begin.
mkdir -p "$folder/build/fuzz/targets"
cat >"$folder/build/fuzz/targets/steady_fuzz" <<'END'
#!/bin/sh
echo "$@" >steady.arguments
printf '#12\tDONE   cov: 3 ft: 4 corp: 5/60b lim: 7 exec/s: 8 rss: 9Mb\n' >&2
END
cat >"$folder/build/fuzz/targets/wrong_fuzz" <<'END'
#!/bin/sh
echo 'SUMMARY: AddressSanitizer: heap-buffer-overflow in Read' >&2
exit 77
END
cat >"$folder/build/fuzz/targets/missing_fuzz" <<'END'
#!/bin/sh
exit 127
END
chmod +x "$folder"/build/fuzz/targets/*
# fuzz_in_folder
fuzz_in_folder() (
  . cmake/fuzzing.sh
  cd "$folder"
  FUZZ_SECONDS=3 run_fuzzing
  conclude
)
expect 1 'test: failed: missing_fuzz wrong_fuzz' fuzz_in_folder
for text in 'steady_fuzz: 12 inputs, of which 5 go different ways: 3 edges, 4 features' 'wrong_fuzz: FOUND something' \
  'SUMMARY: AddressSanitizer: heap-buffer-overflow in Read' 'missing_fuzz: FOUND something'; do
  grep -qF "$text" "$folder/output" || fail "fuzzing does not say '$text'"
done
grep -qF 'max_total_time=3' "$folder/steady.arguments" || fail "FUZZ_SECONDS does not reach the targets"
rm "$folder"/build/fuzz/targets/[mw]*_fuzz
expect 0 'All tests passed.' fuzz_in_folder

# Of a campaign's rounds those of the product go wrong.
mkdir -p "$folder/build/release/bin"
cat >"$folder/build/release/bin/pipe_campaign" <<'END'
#!/bin/sh
echo "$@" >>campaign.arguments
[ "$2" = messages ]
END
chmod +x "$folder/build/release/bin/pipe_campaign"
# campaign_in_folder
campaign_in_folder() (
  cd "$folder"
  CAMPAIGN_ROUNDS=12 run_campaign release
  conclude
)
expect 1 'test: failed: campaign:product' campaign_in_folder
printf '%s\n' '--of messages --rounds 12' '--of product --rounds 3' | cmp - "$folder/campaign.arguments" ||
  fail "CAMPAIGN_ROUNDS does not reach the campaign"

# Of a model's variants three become what is said of them, one has no flaw, one fails otherwise, and one is none. The checker
# here is a program that prints what the variant's name says.
mkdir -p "$folder/bin" "$folder/tests/model"
cat >"$folder/bin/spin" <<'END'
#!/bin/sh
[ "$1" = -a ] || exit 0
case $2 in
  -DSOUND) says='State-vector 8 byte, depth reached 9, errors: 0\n     12 states, stored\n' ;;
  -DTWICE) says='pan:1: assertion violated  !(handledTwice) (at depth 3)\n     7 states, stored\n' ;;
  *) exit 1 ;;
esac
printf '%s\n' '#include <stdio.h>' "int main() { fputs(\"$says\", stdout); }" >pan.c
END
chmod +x "$folder/bin/spin"
cat >"$folder/tests/model/variants.txt" <<'END'
# what is compiled in
sound holds SOUND
ended ends SOUND
flawed handledTwice TWICE

harmless handledTwice SOUND
other neverDone TWICE
none holds NONE
END
# model_in_folder
model_in_folder() (
  . cmake/modelling.sh
  cd "$folder"
  PATH=$folder/bin:$PATH
  check_model
  conclude
)
expect 1 'test: failed: model:harmless model:other model:none' model_in_folder
for row in '^ok +sound +12  holds$' '^ok +ended +12  ends$' '^ok +flawed +7  handledTwice$' '^WRONG +harmless +12  holds$' \
  '^WRONG +other +7  handledTwice$' '^WRONG +none +-  no answer: '; do
  grep -qE "$row" "$folder/output" || fail "checking the model does not print '$row'"
done
sed -i '5,$d' "$folder/tests/model/variants.txt"
expect 0 'All tests passed.' model_in_folder
echo "The scripts do as they say."
