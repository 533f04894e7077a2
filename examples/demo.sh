#!/usr/bin/env bash
# The onvifCtrl demo: a copy of the sample camera in a temporary folder, a
# server block made by onvif-shm, and a few web-side changes carried into the
# ONVIF files. Each step prints the command, its output, the files it changed
# (as a diff) and the slots it changed.
#
#   examples/demo.sh [BUILD_DIR]      (default: build)
set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-build}"
case "$build" in /*) ;; *) build="$here/../$build" ;; esac
ctlbin="$build/onvifCtrl"
shmtool="$build/onvif-shm"
for tool in "$ctlbin" "$shmtool"; do
  [ -x "$tool" ] || { echo "demo: $tool not found; build first (see README)" >&2; exit 1; }
done

root="$(mktemp -d /tmp/onvifctrl-demo-XXXXXX)"
snap="$(mktemp -d /tmp/onvifctrl-demo-snap-XXXXXX)"
export ONVIFCTRL_ROOT="$root"
cleanup() { "$shmtool" remove >/dev/null 2>&1 || true; rm -rf "$root" "$snap"; }
trap cleanup EXIT

cp -R "$here/camera/." "$root/"

# Helpers for the step files.
say() { printf '\n== %s\n' "$*"; }
slots() { "$shmtool" dump --all | awk '$3 != 0 || $1 == 0'; }
# web FILE KEY VALUE: the web interface changes one "root." key.
web() {
  local file="$root$1" key="$2" value="$3"
  if grep -q "^$key=" "$file"; then
    sed -i "s|^$key=.*|$key=$value|" "$file"
  else
    printf '%s=%s\n' "$key" "$value" >> "$file"
  fi
  echo "web: $1: $key=$value"
}
# The files a run changed, as line diffs (temporary WS_ files left out).
files_in() {
  (cd "$1" && find . -type f ! -name '.slots' ! -name 'WS_*' ! -name 'OS_*' ! -name '*_Default_All_Conf' | sort)
}
changed_files() {
  local f
  for f in $(files_in "$root"); do
    if [ ! -f "$snap/$f" ]; then
      echo "    new ${f#.}:"
      head -n 5 "$root/$f" | sed 's/^/      + /'
    elif ! cmp -s "$snap/$f" "$root/$f"; then
      echo "    ${f#.}:"
      diff "$snap/$f" "$root/$f" | grep '^[<>]' | sed 's/^</      -/; s/^>/      +/' || true
    fi
  done
  for f in $(files_in "$snap"); do
    [ -f "$root/$f" ] || echo "    removed ${f#.}"
  done
}
# ctl ARGS...: run onvifCtrl, then show what changed in files and slots.
ctl() {
  rm -rf "$snap"; mkdir -p "$snap"; cp -R "$root/." "$snap/"
  slots > "$snap/.slots"
  echo "\$ onvifCtrl $*"
  "$ctlbin" "$@" | sed 's/^/  | /' || true
  echo "  files changed:"
  changed_files
  echo "  slots changed:"
  slots | diff "$snap/.slots" - | grep '^[<>]' | sed 's/^/    /' || true
}

say "The server starts: onvif-shm creates its block under $root"
"$shmtool" create ONVIF_BRAND=40 ONVIF_DEVICE=6 ONVIF_VIDEO_TYPE=0 ONVIF_IO_TYPE=1 SERVER_STATE=1 ONVIF_RESET=300
echo "slots: $(slots | wc -l) set"

for step in "$here"/demo.d/*.sh; do
  # shellcheck source=/dev/null
  . "$step"
done

say "Done: the camera copy and the block are removed"
