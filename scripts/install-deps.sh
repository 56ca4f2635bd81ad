#!/usr/bin/env bash
# Installs the Debian packages KVR-PC needs to build, run and test, as listed
# in scripts/packages.list: the build, run and test roles, and any further
# role named on the command line (sanitize). Idempotent: only what is
# missing is installed.
set -euo pipefail

list="$(dirname "$0")/packages.list"
roles=" build run test $* "
mapfile -t packages < <(awk -v roles="$roles" '!/^#/ && NF == 2 && index(roles, " " $1 " ") { print $2 }' "$list")

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
