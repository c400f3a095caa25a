#!/usr/bin/env bash
# Builds the libFuzzer targets in a separate clang tree and runs each for a while.
set -euo pipefail

usage() {
  cat <<'USAGE'
Usage: scripts/fuzz.sh [--seconds N] [--build DIR] [--jobs N] [TARGET...]

Configures DIR (default build-fuzz/) with clang and -DTAMLIN_FUZZ=ON, builds the
fuzz targets and runs each one for N seconds (default 30). With TARGET names,
only those are built and run (e.g. fuzz_vsscanf).

Each target keeps its corpus in DIR/corpus/<target>/ between runs; it starts from the
inputs in tests/fuzz/seeds/<target>/ and uses tests/fuzz/<target>.dict if they exist.
A crash leaves its input as DIR/artifacts/<target>/crash-*; rerun it with
  DIR/fuzz/<target> DIR/artifacts/<target>/crash-...
The script exits non-zero when a target finds a crash.
USAGE
}

root=$(cd "$(dirname "$0")/.." && pwd)
seconds=30
build="$root/build-fuzz"
jobs=2
targets=()
while [[ $# -gt 0 ]]; do
  case "$1" in
    --seconds) seconds="${2:?--seconds needs a number}"; shift 2 ;;
    --seconds=*) seconds="${1#*=}"; shift ;;
    --build) build="${2:?--build needs a directory}"; shift 2 ;;
    --jobs) jobs="${2:?--jobs needs a number}"; shift 2 ;;
    -h|--help) usage; exit 0 ;;
    -*) echo "fuzz.sh: unknown option $1" >&2; usage >&2; exit 2 ;;
    *) targets+=("$1"); shift ;;
  esac
done
[[ "$seconds" =~ ^[0-9]+$ ]] || { echo "fuzz.sh: --seconds wants a whole number" >&2; exit 2; }

command -v clang++ >/dev/null || { echo "fuzz.sh: clang++ is not installed" >&2; exit 1; }

CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTAMLIN_FUZZ=ON -DTAMLIN_BUILD_BENCH=OFF >/dev/null
if [[ ${#targets[@]} -eq 0 ]]; then
  cmake --build "$build" -j"$jobs" --target fuzz-targets
  for exe in "$build"/fuzz/*; do
    [[ -x "$exe" && -f "$exe" ]] && targets+=("$(basename "$exe")")
  done
else
  cmake --build "$build" -j"$jobs" --target "${targets[@]}"
fi
[[ ${#targets[@]} -gt 0 ]] || { echo "fuzz.sh: no fuzz targets were built" >&2; exit 1; }

failed=()
for t in "${targets[@]}"; do
  corpus="$build/corpus/$t"
  artifacts="$build/artifacts/$t"
  mkdir -p "$corpus" "$artifacts"
  extra=()
  [[ -f "$root/tests/fuzz/$t.dict" ]] && extra+=(-dict="$root/tests/fuzz/$t.dict")
  seeds=()
  [[ -d "$root/tests/fuzz/seeds/$t" ]] && seeds+=("$root/tests/fuzz/seeds/$t")
  echo "== $t: ${seconds}s"
  if ! "$build/fuzz/$t" -max_total_time="$seconds" -print_final_stats=1 \
        -artifact_prefix="$artifacts/" "${extra[@]}" "$corpus" "${seeds[@]}"; then
    failed+=("$t")
  fi
done

if [[ ${#failed[@]} -gt 0 ]]; then
  echo "fuzz.sh: crashes found by: ${failed[*]} (inputs in $build/artifacts/)" >&2
  exit 1
fi
echo "fuzz.sh: ${#targets[@]} target(s) ran ${seconds}s each without a crash"
