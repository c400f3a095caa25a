#!/usr/bin/env bash
# Builds the Debian packages tamlin, tamlin-dev and evasim and checks them with lintian.
set -euo pipefail

usage() {
  cat <<TXT
Usage: scripts/package.sh [BUILD_DIR]

Configures BUILD_DIR/deb (default: build/deb) for the file system's layout (prefix /usr,
the configuration in /etc/tamlin, the install root /var/lib/tamlin), builds the provider,
tamlinctl and evasim there without tests, and makes the three packages in
BUILD_DIR/deb/packages/. Then lintian checks each: the script fails on an error and lists
the warnings. CMAKE_ARGS adds configure options; JOBS (default 2) sets the parallel jobs.
TXT
}

case "${1:-}" in
  -h|--help) usage; exit 0 ;;
esac
src=$(cd "$(dirname "$0")/.." && pwd)
build="${1:-build}"
tree="$build/deb"
jobs="${JOBS:-2}"

# Debian's hardening: fortified functions, stack protector, read-only relocations bound at load.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
cxxflags="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
ldflags=$(dpkg-buildflags --get LDFLAGS)
# shellcheck disable=SC2086
cmake -S "$src" -B "$tree" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr \
  -DTAMLIN_BUILD_TESTS=OFF -DTAMLIN_BUILD_BENCH=OFF "-DCMAKE_CXX_FLAGS=$cxxflags" \
  "-DCMAKE_EXE_LINKER_FLAGS=$ldflags" "-DCMAKE_SHARED_LINKER_FLAGS=$ldflags" ${CMAKE_ARGS:-} >/dev/null
cmake --build "$tree" -j"$jobs"
rm -f "$tree"/packages/*.deb
(cd "$tree" && cpack -G DEB >/dev/null)
mapfile -t debs < <(ls "$tree"/packages/*.deb)
printf 'package: %s\n' "${debs[@]}"

if ! command -v lintian >/dev/null; then
  echo "package: lintian is not installed (make deps installs it); the packages are unchecked" >&2
  exit 1
fi
status=0
for deb in "${debs[@]}"; do
  report=$(lintian --no-cfg "$deb" 2>&1 || true)
  errors=$(grep -c '^E: ' <<<"$report" || true)
  warnings=$(grep -c '^W: ' <<<"$report" || true)
  printf 'lintian: %s: %s errors, %s warnings\n' "$(basename "$deb")" "$errors" "$warnings"
  grep -E '^(E|W): ' <<<"$report" | sed 's/^/  /' || true
  [[ "$errors" -eq 0 ]] || status=1
done
exit "$status"
