#!/usr/bin/env bash
# kvr upload and kvr reflash against the simulated board: on each board
# type a compiled example uploaded as S-records and as Intel hex, each
# checked by a parser of the test's own against the board's memory; a
# KVR4410F re-flashed and its flash found after a restart; a bad S-record
# file refused; exit statuses, and a board lost mid-upload.
set -u
BIN=${KVR_BIN_DIR:?}
work=$(mktemp -d)
source "${KVR_SOURCE_DIR:?}/tests/e2e/cli_lib.sh"
source "$KVR_SOURCE_DIR/tests/prom/e2e/image_lib.sh"
trap 'kill $board_pid 2>/dev/null; rm -rf "$work"' EXIT
board_settings
printf 'Intercharacter delay - KVR6630=0\r\n' >>"$settings/KVR-PC.INI"
cp "$KVR_SOURCE_DIR"/examples/*.KVR "$work/"
kvr() { "$BIN/kvr" --settings-dir "$settings" "$@" --remote "127.0.0.1:$port"; }
stop_board() { kill "$board_pid" && wait "$board_pid" 2>/dev/null; }
# on TYPE ARGS...: a fresh board of TYPE for the commands that follow.
on() {
    spawn_board "$1" --type "$@"
    board_pid=$spawned_pid port=$spawned_port
    [ -n "$port" ] || { echo "kvr-board did not start: $(cat "$work/$1.err")"; exit 1; }
}

# The forget line has the type's offset and takes the upload program away.
# (The window's journey uploads both formats from a 4410 ANS board.)
for entry in "4410Fig 2E00 4 FIGLIST srec ihex" "6630Fig B400 4 FIGLIST srec ihex" "4410F 3C00 2 SQUARES srec"; do
    read -r type start offset program formats <<<"$entry"
    pctype=$type
    [ "$type" = 4410F ] && pctype=4410ANS
    flash=()
    [ "$type" = 4410F ] && flash=(--flash "$work/flash.bin")
    on "$type" "${flash[@]}"
    end=$(kvr compile "$work/$program.KVR" --type "$pctype" | sed -n 's/.* - FINISHED at \([0-9A-F]*\)$/\1/p')
    [ -n "$end" ] || fail "$program.KVR did not compile on $type"
    board_bytes "$port" "$start" "$end" >"$work/memory"
    expect_eq "$(wc -l <"$work/memory")" $((16#$end - 16#$start)) "bytes read with C@ on $type"
    here=$(board_line "$port" "BASE @ HEX HERE U. BASE !")
    for format in $formats; do
        out=$(kvr upload "$work/$type" --start "$start" --end "$end" --type "$pctype" --format "$format" 2>&1)
        expect_eq "$?" 0 "$type $format upload"
        file=$work/$type.MOT
        [ "$format" = ihex ] && file=$work/$type.INT
        grep -q "$file: Image checked: .* bytes from $start" <<<"$out" || fail "$type $format upload said: $out"
        parse_image "$file" "$format" "$start" | cmp -s - "$work/memory" || fail "$type $format image differs from memory"
        tail -n 1 "$work/$type.log" | grep -qx "' JOB $offset - DUP @ CONTEXT @ ! 4 - DP !" || fail "$type forget line"
        expect_eq "$(board_line "$port" "BASE @ HEX HERE U. BASE !")" "$here" "HERE after the $type $format upload"
    done
    [ "$type" = 6630Fig ] && grep -q 'FD14' "$work/$type.log" && fail "4410 set-up line sent to a 6630"
    [ "$type" = 4410F ] || stop_board
done

# --- re-flash the S-record file, restart the board, upload the flash
expect_eq "$(kvr reflash "$work/4410F.MOT" 2>&1)" "REFLASH OK $(wc -l <"$work/memory") BYTES" "reflash verdict"
stop_board
on 4410F --flash "$work/flash.bin"
kvr upload "$work/flash" --start 8800 --end "$(printf %X $((16#8800 + $(wc -l <"$work/memory"))))" >/dev/null 2>&1
parse_image "$work/flash.MOT" srec 8800 | cmp -s - "$work/memory" || fail "the restarted board's flash does not hold the image"
# A bad S-record file: refused before REFLASH, the flash untouched.
cp "$work/flash.bin" "$work/flash.before"
printf 'S1130000000102030405060708090A0B0C0D0E0F74\r\nS2080088004142430B\r\nS9030000FC\r\n' >"$work/bad.mot"
kvr reflash "$work/bad.mot" >/dev/null 2>"$work/err"
expect_eq "$?" 1 "bad S-record exit status"
grep -q "Error: Bad S-record file, address is 24 bits wide" "$work/err" || fail "bad file message: $(cat "$work/err")"
grep -qx "REFLASH" "$work/4410F.log" && fail "REFLASH sent for a bad file"
cmp -s "$work/flash.bin" "$work/flash.before" || fail "a bad file changed the flash"

# --- usage faults, a board lost mid-upload, no board at all
for usage in "--start 3C00" "--start 3C00 --end 3C00" "--start 3C00 --end 3C10 --format bin"; do
    kvr upload "$work/x" $usage >/dev/null 2>&1
    expect_eq "$?" 3 "upload $usage"
done
kvr reflash "$work/4410F.MOT" --type 6630Fig >/dev/null 2>&1
expect_eq "$?" 3 "reflash on a 6630"
stop_board
on 4410ANS --baud 57600
kvr upload "$work/cut" --start 8000 --end C000 >/dev/null 2>"$work/cut.err" &
upload_pid=$!
for _ in $(seq 1 300); do [ -s "$work/cut.MOT" ] && break; sleep 0.05; done
stop_board
wait "$upload_pid"
expect_eq "$?" 2 "board gone mid-upload"
grep -q 'link to the board was lost; .*cut.MOT keeps what arrived' "$work/cut.err" || fail "mid-upload: $(cat "$work/cut.err")"
[ -s "$work/cut.MOT" ] || fail "records that came before the board went are kept"
kvr upload "$work/x" --start 3C00 --end 3C10 >/dev/null 2>&1
expect_eq "$?" 2 "upload without a board"
kvr reflash "$work/4410F.MOT" >/dev/null 2>&1
expect_eq "$?" 2 "reflash without a board"

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
