#!/usr/bin/env bash
# Runs the command-line host against the freshly built provider.
set -euo pipefail

usage() {
  cat <<TXT
Usage: scripts/demo.sh [BUILD_DIR]

Loads the provider built in BUILD_DIR (default: build) with tamlinctl, the way a backup
framework does, and shows what it announces.
TXT
}

case "${1:-}" in
  -h|--help) usage; exit 0 ;;
esac
build=${1:-build}
ctl="$build/bin/tamlinctl"
lib="$build/lib/libtamlin.so"
if [[ ! -x "$ctl" || ! -f "$lib" ]]; then
  echo "demo: $ctl or $lib is missing; run 'make build' first" >&2
  exit 1
fi

echo "== tamlinctl check: load $lib, resolve its entries, init and fini"
"$ctl" --provider "$lib" check
