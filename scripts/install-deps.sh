#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks to build and test Tamlin.
# Only missing packages are fetched; when everything is present it prints nothing.
set -euo pipefail

packages=(
  g++ cmake make pkg-config
  libace-dev
  libicu-dev icu-devtools
  libxerces-c-dev
  libsqlite3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  lintian dpkg-dev file
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

[[ ${#missing[@]} -eq 0 ]] && exit 0

if [[ $(id -u) -ne 0 ]]; then
  echo "install-deps: missing packages: ${missing[*]}" >&2
  echo "install-deps: run as root (or install them yourself) and try again" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "install-deps: done"
