# The steps of scripts/test and scripts/test-arm. Each is run and timed, even if others fail.
failed=()
timings=()

# Runs a step: step NAME COMMAND...
step() {
  local name=$1 start=$SECONDS
  shift
  echo "== $name"
  local result=ok
  "$@" || result=FAILED
  [[ $result == ok ]] || failed+=("$name")
  timings+=("$(printf '%-16s %4d s  %s' "$name" $((SECONDS - start)) "$result")")
  [[ $result == ok ]]
}

# Builds a preset: build PRESET [CMAKE OPTION...]
build() {
  cmake --preset "$@" -G Ninja > "build/$1.log" || { cat "build/$1.log"; return 1; }
  cmake --build --preset "$1"
}

# Runs the tests, and keeps ctest's output for summary(): run_tests PRESET [CTEST OPTION...]
run_tests() {
  ctest --preset "$@" -j "$(nproc)" 2>&1 | tee "build/$1.ctest"
}

# Builds and tests a preset: test_preset PRESET [CTEST OPTION...]
test_preset() {
  rm -f "build/$1.ctest"
  if step "build $1" build "$1"; then
    step "test $1" run_tests "$@" || true
  fi
}

# Prints the results of all steps, and of the tests of the presets. Exits with 1 if any failed.
summary() {
  echo "== summary"
  printf '%s\n' "${timings[@]}"
  local preset
  for preset in "$@"; do
    [[ -e build/$preset.ctest ]] || continue
    echo "-- $preset"
    sed -n '/% tests passed/,$p' "build/$preset.ctest"
  done
  [[ ${#failed[@]} -gt 0 ]] || exit 0
  echo "failed: ${failed[*]}"
  exit 1
}
