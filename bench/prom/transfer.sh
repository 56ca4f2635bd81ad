#!/usr/bin/env bash
# PROM upload and re-flash throughput at a modelled 38400 baud, against the
# wire limit of 10 bits a character. Each figure is the difference between a
# large and a small transfer, so compiling the board program, the forget
# line and the closing pauses, which both runs share, drop out.
set -eu
BIN=${KVR_BIN_DIR:?}
baud=38400
work=$(mktemp -d)
board_pid=""
cleanup() {
    [ -n "$board_pid" ] && kill "$board_pid" 2>/dev/null && wait "$board_pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
"$BIN/kvr-board" --type 4410F --flash "$work/flash.bin" --port 0 --no-heartbeat --baud $baud --char-time-us 260 \
    >"$work/board.out" 2>/dev/null &
board_pid=$!
port=""
for _ in $(seq 1 200); do
    port=$(sed -n 's/^listening on 127\.0\.0\.1:\([0-9]*\)$/\1/p' "$work/board.out")
    [ -n "$port" ] && break
    sleep 0.05
done
[ -n "$port" ] || { echo "bench_prom: kvr-board did not start"; exit 1; }
mkdir -p "$work/settings"
printf '[Parameters]\r\nKVR computer type=4410ANS\r\nTimeout=3000\r\nBaud rate=%s\r\n' \
    $baud >"$work/settings/KVR-PC.INI"
kvr() { "$BIN/kvr" "$1" --settings-dir "$work/settings" --remote "127.0.0.1:$port" --quiet "${@:2}"; }
now() { date +%s%N; }

# seconds NAME COMMAND...: runs the command, prints its wall time in ns.
timed() {
    local begin end
    begin=$(now)
    "$@" >"$work/out" 2>&1 || { echo "bench_prom: $* failed: $(cat "$work/out")" >&2; exit 1; }
    end=$(now)
    echo $((end - begin))
}
# ratio TIME_NS CHARS: measured time over the wire time of CHARS characters.
ratio() { awk -v t="$1" -v c="$2" -v b=$baud 'BEGIN { printf "%.3f", (t / 1e9) / (c * 10 / b) }'; }

small=$(timed kvr upload "$work/small.MOT" --start 8800 --end 8810)
large=$(timed kvr upload "$work/large.MOT" --start 8800 --end 9800)
chars=$(($(stat -c %s "$work/large.MOT") - $(stat -c %s "$work/small.MOT")))
up=$(ratio $((large - small)) $chars)
echo "PROM upload at $baud baud: $chars record characters in $(((large - small) / 1000000)) ms," \
    "$up x the wire limit (goal <= 1.05)"

# Images of 64 and 28,672 bytes: both longer than 60, so both take the same
# path through the 61st-byte exchange; the large one long enough on the wire
# (7.5 s) that the few hundred milliseconds by which compiling the receiver
# varies do not hide it.
srec() {
    local count=$1 address=0 line sum i byte
    while [ "$count" -gt 0 ]; do
        line=$(printf '13%04X' $address)
        sum=$((0x13 + (address >> 8) + (address & 255)))
        for ((i = 0; i < 16; i++)); do
            byte=$(((address + i * 7) & 255))
            line+=$(printf '%02X' $byte)
            sum=$((sum + byte))
        done
        printf 'S%s%02X\r\n' "1$line" $((255 - (sum & 255)))
        address=$((address + 16))
        count=$((count - 16))
    done
    printf 'S9030000FC\r\n'
}
srec 64 >"$work/small.img.MOT"
srec 28672 >"$work/large.img.MOT"
# median FILE: the middle of three timed re-flashes.
median() {
    local runs=()
    for _ in 1 2 3; do runs+=("$(timed kvr reflash "$1")"); done
    printf '%s\n' "${runs[@]}" | sort -n | sed -n 2p
}
small=$(median "$work/small.img.MOT")
large=$(median "$work/large.img.MOT")
grep -q "REFLASH OK 28672 BYTES" "$work/out" || { echo "bench_prom: re-flash not verified: $(cat "$work/out")"; exit 1; }
bytes=$((28672 - 64))
flash=$(ratio $((large - small)) $bytes)
echo "Re-flash at $baud baud: $bytes image bytes in $(((large - small) / 1000000)) ms (median of 3), $flash x the wire limit," \
    "verified by the board (goal <= 1.15)"
