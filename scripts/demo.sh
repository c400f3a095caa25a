#!/usr/bin/env bash
# The demo: a provider install against simulated arrays, looked at with tamlinctl.
set -euo pipefail

usage() {
  cat <<TXT
Usage: scripts/demo.sh [BUILD_DIR]

Lays out a demo install of the provider built in BUILD_DIR (default: build) under
BUILD_DIR/demo and shows, with tamlinctl, what a backup framework sees through it:

  - an install root (QORIN_INSTALL_ROOT) whose ConfigFiles/tamlin.conf points CLI_TOOL_INFO at
    the array simulator evasim, installed under the SSSU name sssu_linux_x64, holds the logins
    of two Command View servers and sets trace level 3;
  - an evasim site with two servers, three storage cells, a few dozen disks in folders,
    snapshots, hosts in folders and a DR group (tools/evasim/scenarios/demo-site.scn);
  - tamlinctl info, enclosures, hosts and disks (with a filter and flags), then errmsg;
  - a backup moment: vsnaps of two Oracle disks and a snapclone of a third with tamlinctl
    snapshot, the Oracle disks listed before and after;
  - the backup host reading a copy: a vsnap presented to it (its LUN shown) and taken away
    again, then the vsnaps disposed of;
  - a restore of one disk from its snapclone, with the copy's progress, and the snapclone
    disposed of;
  - the copies earlier jobs left on the arrays (tamlinctl leftovers), disposed of, so that
    none is left.

Each run starts from scratch. Afterwards the paths of the install root, the trace log and
the simulator's state are printed, with the commands to look further yourself.
TXT
}

case "${1:-}" in
  -h|--help) usage; exit 0 ;;
esac
build=$(cd "${1:-build}" && pwd)
src=$(cd "$(dirname "$0")/.." && pwd)
ctl="$build/bin/tamlinctl"
lib="$build/lib/libtamlin.so"
evasim="$build/bin/evasim"
for f in "$ctl" "$lib" "$evasim" "$build/Messages/libtamlin/root.res"; do
  if [[ ! -e "$f" ]]; then
    echo "demo: $f is missing; run 'make build' first" >&2
    exit 1
  fi
done

demo="$build/demo"
root="$demo/install/"
sssu="$demo/sssu/"
rm -rf "$demo"
mkdir -p "${root}ConfigFiles" "${root}Messages" "$sssu" "$demo/evasim"
cp -r "$build/Messages/libtamlin" "${root}Messages/"
ln -s "$evasim" "${sssu}sssu_linux_x64"

cat >"${root}ConfigFiles/tamlin.conf" <<CONF
[DEBUG_TRACE_INFO]
"TRACELEVEL"=dword:00000003

[CLI_TOOL_INFO]
"FILEPATH"="$sssu"
"FILENAME"="sssu_linux_x64"

[MANAGEMENT_APPLIANCE_INFO\\cv-east]
"HOSTNAME"="cv-east.example.com"
"USERNAME"="administrator"
"PASSWORD"="Secret1"

[MANAGEMENT_APPLIANCE_INFO\\cv-west]
"HOSTNAME"="cv-west.example.com"
"USERNAME"="administrator"
"PASSWORD"="two words"
CONF

export QORIN_INSTALL_ROOT="$root"
export QORIN_REGISTRY="$demo/registry.conf"   # absent: no machine-wide settings apply
export QORIN_LOCK_DIR="$demo"
export EVASIM_HOME="$demo/evasim"
unset QORIN_CREDENTIAL_BLOB QORIN_CONSUMER

step() { printf '\n== %s\n' "$*"; }
run() {
  # Shown as it would be typed: words with backslashes, blanks or hashes in single quotes.
  local shown="" word
  for word in "$@"; do
    if [[ "$word" =~ ^[A-Za-z0-9_./:=,+-]+$ ]]; then shown+=" $word"; else shown+=" '${word//\'/\'\\\'\'}'"; fi
  done
  printf '$ tamlinctl%s\n' "$shown"
  "$ctl" --provider "$lib" "$@"
}

cat <<TXT

Tamlin demo: the provider ($lib) installed under $demo,
looked at with tamlinctl as a backup framework would. SSSU and the arrays are played by
evasim, which answers SSSU's scripts from the simulated site below.
TXT

step "The simulated site: Command View servers and their storage cells"
"$evasim" init --scenario "$src/tools/evasim/scenarios/demo-site.scn"
"$evasim" show servers

step "What the provider announces (no array is asked for this)"
run info

step "The arrays it reaches: each cell once, though EVA-DR is managed by both servers"
run enclosures

step "The hosts the arrays know, by name, with their port WWNs"
run hosts

step "Every virtual disk with the UDID a backup job names it by"
run disks

step "Only the Oracle disks of EVA-EAST, without snapshots"
run disks --enclosure-name EVA-EAST --prefix '\Oracle\' --no-snapshots

step "A disk by its UDID, as a backup job asks for it"
udid=$("$ctl" --provider "$lib" --json disks --prefix '\Files\share01' | sed -n 's/.*"udid": *"\([^"]*\)".*/\1/p' | head -n 1)
run disks --udid "$udid"

step "What a result code means, in English and in German"
run errmsg 29
run --lang de errmsg 29

step "A backup moment: copies of the Oracle disks, made as a backup job makes them"
run disks --enclosure-name EVA-EAST --prefix '\Oracle\'
run snapshot --method HPEVA_VSnap 'EVA-EAST##Oracle\ora_data' 'EVA-EAST##Oracle\ora_logs'
# The array takes a moment to start this copy, so the provider's short wait shows.
"$evasim" set snapclone_reads=2 >/dev/null
run snapshot --method HPEVA_Snapclone 'EVA-EAST##Oracle\ora_arch'
"$evasim" set snapclone_reads=1 >/dev/null
echo "A snapclone of a disk that has snapshots is refused before anything is made:"
run snapshot --method HPEVA_Snapclone 'EVA-EAST##Oracle\ora_data' || true
run disks --enclosure-name EVA-EAST --prefix '\Oracle\'

step "The backup host reads the copy of ora_data: presented to backup01 on a LUN, then taken away"
run present 'EVA-EAST##Oracle\ora_data\ora_data_vsnap000' --host backup01 --shared
run unpresent 'EVA-EAST##Oracle\ora_data\ora_data_vsnap000' --host backup01

step "The backup has been read: its vsnaps are disposed of"
run dispose --yes 'EVA-EAST##Oracle\ora_data\ora_data_vsnap000' 'EVA-EAST##Oracle\ora_logs\ora_logs_vsnap000'

step "Restore: ora_arch back to the content of its snapclone, with the copy's progress"
run restore 'EVA-EAST##Oracle\ora_arch' 'EVA-EAST##Oracle\ora_arch_clone000' --yes
echo "The snapclone has served:"
run dispose --yes 'EVA-EAST##Oracle\ora_arch_clone000'
run disks --enclosure-name EVA-EAST --prefix '\Oracle\'

step "Copies that earlier jobs left on the arrays, disposed of until none is left"
run leftovers
mapfile -t old < <("$ctl" --provider "$lib" --json leftovers | grep -o '"copy":"[^"]*"' | cut -d'"' -f4 | sed 's/\\\\/\\/g')
run dispose --yes "${old[@]}"
run leftovers

log=$(ls "$root"Logs/tamlin.log.* 2>/dev/null | head -n 1 || true)
step "Where things are"
cat <<TXT
install root      $root
  configuration   ${root}ConfigFiles/tamlin.conf
  trace log       ${log:-(none written)}
SSSU (evasim)     ${sssu}sssu_linux_x64
simulator state   $EVASIM_HOME/evasim.db

Look further with the same environment:
  export QORIN_INSTALL_ROOT=$root QORIN_REGISTRY=$QORIN_REGISTRY QORIN_LOCK_DIR=$QORIN_LOCK_DIR EVASIM_HOME=$EVASIM_HOME
  $ctl --help
  $evasim show disks --cell EVA-WEST
TXT
