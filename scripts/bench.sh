#!/usr/bin/env bash
# Runs every benchmark built into BUILD_DIR/bin (default: build); fails if one fails.
set -euo pipefail

case "${1:-}" in
  -h|--help)
    echo "Usage: scripts/bench.sh [BUILD_DIR]"
    echo
    echo "Runs each BUILD_DIR/bin/bench_* in turn and prints what it measures."
    exit 0 ;;
esac
build=${1:-build}
shopt -s nullglob
benches=("$build"/bin/bench_*)
if (( ${#benches[@]} == 0 )); then
  echo "bench: no benchmarks in $build/bin; run 'make build' first" >&2
  exit 1
fi
status=0
for b in "${benches[@]}"; do
  [[ -x "$b" ]] || continue
  echo "== $(basename "$b")"
  "$b" || status=1
done
exit $status
