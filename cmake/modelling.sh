# Sourced by test: checks the model of the message pipe (tests/model, docs/testing.md) in all its variants.

# check_variant NAME RESULT DEFINITION...: says in build/model/NAME.txt what was found; it begins with ok or WRONG. What led
# to a failure stands in NAME.trace.
check_variant() (
  name=$1
  expected=$2
  shift 2
  folder=$PWD/build/model/$name
  model=$PWD/tests/model
  rm -rf "$folder"
  mkdir -p "$folder"
  cd "$folder"
  case $expected in
    holds) search="-O2 -DSAFETY" way="" ;;
    ends) search="-O2 -DNP" way=-l ;;
    *) search="-O0 -DSAFETY" way="" ;;  # which ends soon
  esac
  found=""
  definitions=$(printf -- '-D%s ' "$@")
  if spin -a $definitions "$model/pipe.pml" >spin.log 2>&1 &&
    gcc $search -DCOLLAPSE -DMEMLIM=4096 -w -o pan pan.c >gcc.log 2>&1; then
    ./pan $way -m10000 >pan.log 2>&1 || true
    found=$(sed -nE 's/^pan:1: assertion violated +!\(([A-Za-z]+)\).*/\1/p; s/^pan:1: (.*)/\1/p' pan.log | head -n 1)
    if [ -z "$found" ] && grep -q 'errors: 0$' pan.log && ! grep -qE 'max search depth too small|not completed' pan.log; then
      found=$(case $expected in ends) echo ends ;; *) echo holds ;; esac)
    fi
  fi
  [ ! -e pipe.pml.trail ] || spin -k pipe.pml.trail -T $definitions "$model/pipe.pml" >"$folder.trace" 2>&1 || true
  states=$(awk '/states, stored/ { print $1 }' pan.log 2>/dev/null || true)
  verdict=ok
  [ "$found" = "$expected" ] || verdict=WRONG
  printf '%-5s  %-30s %9s  %s\n' "$verdict" "$name" "${states:--}" "${found:-no answer: $folder}" >"$folder.txt"
)

# check_model: two at a time.
check_model() {
  echo "== model"
  rm -rf build/model
  mkdir -p build/model
  awk '!/^(#|$)/' tests/model/variants.txt >build/model/variants
  before=""
  while read -r name expected definitions; do
    check_variant "$name" "$expected" $definitions &
    [ -z "$before" ] || wait "$before"
    before=$!
  done <build/model/variants
  wait
  printf '%-5s  %-30s %9s  %s\n' "" variant states result
  while read -r name expected definitions; do
    cat "build/model/$name.txt"
    grep -q '^ok ' "build/model/$name.txt" || failed="$failed model:$name"
  done <build/model/variants
}
