#!/usr/bin/env bash
# libtamlin.so exports exactly the 70 entries as C symbols plus the kit's classes.
set -euo pipefail
lib=$1
entries=$(nm -D --defined-only "$lib" | awk '{print $3}' | grep -c '^tamlin_fi_pgn_' || true)
if [[ "$entries" -ne 70 ]]; then
  echo "expected 70 tamlin_fi_pgn_ symbols, found $entries" >&2
  exit 1
fi
# Everything else must belong to the kit's namespace.
others=$(nm -DC --defined-only "$lib" | awk '{ $1=""; $2=""; sub(/^  /, ""); print }' \
  | grep -v '^tamlin_fi_pgn_' | grep -v 'qorin_pdk_4_4::' || true)
if [[ -n "$others" ]]; then
  echo "symbols outside the entry table and the kit leak out of $lib:" >&2
  echo "$others" | head -20 >&2
  exit 1
fi
echo "ok: 70 entries, nothing else but the kit's classes"
