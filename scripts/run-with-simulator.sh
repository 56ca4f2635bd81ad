#!/usr/bin/env bash
# Starts the simulated board (kvr-board) in the background and KVR-PC set to
# use it for this run, with an example program open. The board stops when
# KVR-PC ends.
#   bash scripts/run-with-simulator.sh BUILD_DIR
# KVR_BOARD_TYPE (4410ANS, 4410Fig, 4410F, 6630Fig) picks the board type and
# the computer type of the run;
# KVR_RUN_SETTINGS the settings folder for this run.
set -euo pipefail

build=${1:-build}
if [ ! -d "$build" ]; then
    echo "run-with-simulator: no build folder $build; run 'make build' first" >&2
    exit 1
fi
build=$(cd "$build" && pwd)   # kvr-pc changes its folder to the source file's
bin="$build/bin"
source_dir=$(cd "$(dirname "$0")/.." && pwd)
type=${KVR_BOARD_TYPE:-4410ANS}
settings=${KVR_RUN_SETTINGS:-$build/run-settings}
work="$build/run-examples"

if [ ! -x "$bin/kvr-board" ]; then
    echo "run-with-simulator: $bin/kvr-board is not built; run 'make build' first" >&2
    exit 1
fi

# The examples are copied once, so edits and backups stay out of the sources.
mkdir -p "$settings" "$work"
settings=$(cd "$settings" && pwd)
for example in "$source_dir"/examples/*.KVR; do
    [ -e "$work/$(basename "$example")" ] || cp "$example" "$work/"
done

board_out=$(mktemp)
board_pid=
stop_board() {
    if [ -n "$board_pid" ]; then
        kill "$board_pid" 2>/dev/null || true
        wait "$board_pid" 2>/dev/null || true
    fi
    rm -f "$board_out"
}
trap stop_board EXIT
trap 'exit 130' INT TERM

"$bin/kvr-board" --type "$type" --port 0 >"$board_out" &
board_pid=$!

ready=
for _ in $(seq 100); do
    ready=$(grep -m1 '^listening on' "$board_out" || true)
    [ -n "$ready" ] && break
    kill -0 "$board_pid" 2>/dev/null || break
    sleep 0.05
done
if [ -z "$ready" ]; then
    echo "run-with-simulator: the simulated board did not start" >&2
    exit 1
fi
address=${ready#listening on }
echo "Simulated $type board $ready"

# The run's settings name the board's type, so kvr-pc speaks its dialect
# (a 4410F is a 4410ANS with flash).
computer=$type
[ "$type" = 4410F ] && computer=4410ANS
ini="$settings/KVR-PC.INI"
if [ ! -f "$ini" ]; then
    printf '[Parameters]\r\nKVR computer type=%s\r\n' "$computer" >"$ini"
elif grep -q '^KVR computer type=' "$ini"; then
    sed -i "s/^KVR computer type=[^\r]*/KVR computer type=$computer/" "$ini"
else
    printf '[Parameters]\r\nKVR computer type=%s\r\n' "$computer" >>"$ini"
fi

if [ -x "$bin/kvr-pc" ]; then
    "$bin/kvr-pc" --settings-dir "$settings" --simulator "$address" "$work/HELLO.KVR"
else
    echo "kvr-pc is not built yet. Talk to the board with, for example:"
    echo "    nc ${address%:*} ${address#*:}"
    echo "Press Ctrl-C to stop the board."
    wait "$board_pid"
fi
