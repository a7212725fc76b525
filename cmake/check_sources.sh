# Sourced by test: what can be said of the sources without running them, the cheapest first.

# cpp_files: all C++ files of the project, a line each.
cpp_files() {
  find base channel plugin platform apps resources docs tests bench fuzz \( -name '*.cpp' -o -name '*.h' \) | sort
}

# Others of the same major version break some lines elsewhere.
format_version=14.0.6

check_format() {
  found=$(clang-format-14 --version 2>&1 | sed -n 's/.*clang-format version \([0-9.]*\).*/\1/p')
  echo "== sources: format (clang-format-14 $found)"
  if [ "$found" != "$format_version" ]; then
    echo "test: clang-format-14 is version ${found:-unknown} here, and the sources are formatted by $format_version:" \
      "install the package clang-format-14 of Debian 12, or put its program first in PATH" >&2
    failed="$failed format"
    return 0
  fi
  cpp_files | xargs clang-format-14 --dry-run --Werror 2>&1 | grep -E 'error:' | cut -d: -f1 | sort | uniq -c >build/format.log || true
  [ -s build/format.log ] || return 0
  cat build/format.log >&2
  echo "test: clang-format-14 -i does what is missing" >&2
  failed="$failed format"
}

# changed_files: what differs from the branch main, or else from the last commit.
changed_files() {
  git diff --name-only --diff-filter=d "$(git merge-base HEAD main 2>/dev/null || echo HEAD)"
  git ls-files --others --exclude-standard
}

# product_files: the product's sources for this system: all in CI, those that were changed elsewhere.
product_files() {
  if [ "${CI:-}" = true ]; then cpp_files; else changed_files; fi |
    grep -E '^(base|channel|plugin|platform|apps|resources)/.*\.cpp$' | grep -vE '_test\.cpp$' |
    while read -r file; do
      grep -qF "\"$PWD/$file\"" build/tidy/compile_commands.json && echo "$file"
    done || true
}

# Two at a time on two processors: a few minutes for all. A build folder of its own, without the headers that tests compile
# ahead: nothing is built in it.
check_tidy() {
  configure_preset asan -B build/tidy -DBRINDLE_WARNINGS_AS_ERRORS=OFF -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
  product_files >build/tidy.files
  echo "== sources: clang-tidy-16 on $(wc -l <build/tidy.files) files"
  xargs -r -P "$(nproc)" -n 4 clang-tidy-16 --quiet -p build/tidy <build/tidy.files >build/tidy.log 2>/dev/null || {
    grep -E -A 3 '(error|warning):' build/tidy.log >&2
    failed="$failed tidy"
  }
}

check_sources() {
  install_packages $check_packages $test_packages
  check_format
  echo "== sources: rules"
  configure_preset release -DBRINDLE_WARNINGS_AS_ERRORS=$werror
  build release --target source_rules_test
  build/release/bin/source_rules_test --gtest_brief=1 || failed="$failed rules"
  check_tidy
}
