#!/usr/bin/env bash
# kvr upload and kvr reflash against the simulated board: a compiled example
# uploaded as S-records and as Intel hex and checked by a parser of the
# test's own against the board's memory; a KVR4410F re-flashed, restarted
# and its flash uploaded again; a bad S-record file and a missing receiver
# leave the flash untouched; the shipped board programs compile on every
# board type they serve, and an upload works on each; exit statuses.
set -u
BIN=${KVR_BIN_DIR:?}
source "${KVR_SOURCE_DIR:?}/tests/prom/e2e/image_lib.sh"
work=$(mktemp -d)
pids=()
cleanup() {
    local pid
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_eq() { [ "$1" == "$2" ] || fail "$3: expected '$2', got '$1'"; }

# start_board NAME ARGS...: a board on a free port; sets PORT and BOARD_PID.
start_board() {
    local name=$1
    shift
    "$BIN/kvr-board" --port 0 --no-heartbeat "$@" >"$work/$name.out" 2>"$work/$name.err" &
    BOARD_PID=$!
    pids+=("$BOARD_PID")
    PORT=""
    for _ in $(seq 1 200); do
        PORT=$(sed -n 's/^listening on 127\.0\.0\.1:\([0-9]*\)$/\1/p' "$work/$name.out")
        [ -n "$PORT" ] && return 0
        sleep 0.05
    done
    echo "kvr-board did not start: $(cat "$work/$name.err")"
    exit 1
}
stop_board() { kill "$BOARD_PID" && wait "$BOARD_PID" 2>/dev/null; }

settings="$work/settings"
mkdir -p "$settings"
printf '[Parameters]\r\nKVR computer type=4410ANS\r\nIntercharacter delay - KVR4410=0\r\nIntercharacter delay - KVR6630=0\r\nTimeout=3000\r\n' \
    >"$settings/KVR-PC.INI"
kvr() { "$BIN/kvr" --settings-dir "$settings" "$@" --remote "127.0.0.1:$PORT"; }
cp "$KVR_SOURCE_DIR"/examples/*.KVR "$work/"

# --- the shipped board programs compile on every board type they serve
for type in 4410ANS 4410Fig 4410F 6630Fig; do
    start_board "$type" --type "$type"
    folder=KVR4410
    programs="PROGMOT PROGINT"
    # the re-flash receiver serves the 4410F, which runs ANS Forth
    [ "$type" = 4410F ] && programs="PROGMOT PROGINT #REFLASH"
    [ "$type" = 6630Fig ] && folder=KVR6630
    pctype=$type
    [ "$type" = 4410F ] && pctype=4410ANS
    for program in $programs; do
        out=$(kvr compile "$settings/program/$folder/$program.KVR" --type "$pctype" 2>&1)
        expect_eq "$?" 0 "$program.KVR on $type"
        echo "$out" | grep -q " - FINISHED at " || fail "$program.KVR on $type: $out"
    done
    stop_board
done

# --- upload a compiled example as S-records and as Intel hex
flash="$work/flash.bin"
start_board f1 --type 4410F --flash "$flash" --log "$work/board.log"
grep -qx 'flash 8800-FB7F' "$work/f1.out" || fail "no flash line: $(cat "$work/f1.out")"
end=$(kvr compile "$work/SQUARES.KVR" | sed -n 's/.* - FINISHED at \([0-9A-F]*\)$/\1/p')
[ -n "$end" ] || fail "example did not compile"
length=$((16#$end - 16#3C00))
board_bytes "$PORT" 3C00 "$end" >"$work/board.bytes"
expect_eq "$(wc -l <"$work/board.bytes")" "$length" "bytes read with C@"
here_before=$(board_line "$PORT" "BASE @ HEX HERE U. BASE !")
for format in srec ihex; do
    out=$(kvr upload "$work/squares" --start 3C00 --end "$end" --format "$format" 2>"$work/err")
    expect_eq "$?" 0 "upload $format"
    extension=MOT
    [ "$format" = ihex ] && extension=INT
    echo "$out" | grep -q "squares.$extension: Image checked: .* $length bytes from 3C00" \
        || fail "upload $format said: $out $(cat "$work/err")"
    parse_image "$work/squares.$extension" "$format" 3C00 >"$work/$format.bytes" || fail "$format image"
    cmp -s "$work/$format.bytes" "$work/board.bytes" || fail "$format image differs from the board's memory"
    tail -n 1 "$work/board.log" | grep -qx "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !" || fail "no forget line last"
    expect_eq "$(board_line "$PORT" "BASE @ HEX HERE U. BASE !")" "$here_before" "HERE after the $format upload"
done
expect_eq "$(board_line "$PORT" "JOB")" "JOB JOB ?  - undefined word" "JOB after the upload"

# --- re-flash from the S-record file, restart the board, upload the flash
out=$(kvr reflash "$work/squares.MOT" 2>"$work/err")
expect_eq "$?" 0 "reflash"
expect_eq "$out" "REFLASH OK $length BYTES" "reflash verdict"
stop_board
start_board f2 --type 4410F --flash "$flash" --log "$work/board2.log"
flash_end=$(printf '%X' $((16#8800 + length)))
kvr upload "$work/flash" --start 8800 --end "$flash_end" >/dev/null 2>"$work/err" || fail "flash upload: $(cat "$work/err")"
parse_image "$work/flash.MOT" srec 8800 >"$work/flash.bytes" || fail "flash image"
cmp -s "$work/flash.bytes" "$work/board.bytes" || fail "the flash does not hold the image"

# --- a bad S-record file and a missing receiver leave the flash untouched
cp "$flash" "$work/flash.before"
printf 'S1130000000102030405060708090A0B0C0D0E0F74\r\nS2080088004142430B\r\nS9030000FC\r\n' >"$work/bad.mot"
kvr reflash "$work/bad.mot" >/dev/null 2>"$work/err"
expect_eq "$?" 1 "bad S-record exit status"
grep -q "Error: Bad S-record file, address is 24 bits wide" "$work/err" || fail "bad file message: $(cat "$work/err")"
grep -qx "REFLASH" "$work/board2.log" && fail "REFLASH sent for a bad file"
cmp -s "$flash" "$work/flash.before" || fail "a bad file changed the flash"

# The program folder gets back a shipped file that is missing; a folder in
# its place keeps it away.
receiver="$settings/program/KVR4410/#REFLASH.KVR"
mv "$receiver" "$work/" && mkdir "$receiver"
lines=$(wc -l <"$work/board2.log")
kvr reflash "$work/squares.MOT" >/dev/null 2>"$work/err"
expect_eq "$?" 1 "missing receiver exit status"
grep -q "Cannot find file #Reflash.kvr" "$work/err" || fail "missing receiver message: $(cat "$work/err")"
expect_eq "$(wc -l <"$work/board2.log")" "$lines" "lines sent without a receiver"
cmp -s "$flash" "$work/flash.before" || fail "a missing receiver changed the flash"
rmdir "$receiver" && mv "$work/#REFLASH.KVR" "$receiver"
stop_board

# --- upload on every board type: the image holds the board's memory, the
# forget line has the type's offset and takes the upload program away again
for entry in "4410ANS 3C00 2 SQUARES" "4410Fig 2E00 4 FIGLIST" "6630Fig B400 4 FIGLIST"; do
    read -r type start offset program <<<"$entry"
    start_board "u$type" --type "$type" --log "$work/u$type.log"
    end=$(kvr compile "$work/$program.KVR" --type "$type" | sed -n 's/.* - FINISHED at \([0-9A-F]*\)$/\1/p')
    [ -n "$end" ] || fail "$program.KVR did not compile on $type"
    board_bytes "$PORT" "$start" "$end" >"$work/u$type.bytes"
    here_before=$(board_line "$PORT" "BASE @ HEX HERE U. BASE !")
    kvr upload "$work/u$type" --start "$start" --end "$end" --type "$type" >/dev/null 2>"$work/err" \
        || fail "$type upload: $(cat "$work/err")"
    parse_image "$work/u$type.MOT" srec "$start" >"$work/u$type.image" || fail "$type image"
    cmp -s "$work/u$type.image" "$work/u$type.bytes" || fail "$type image differs from the board's memory"
    tail -n 1 "$work/u$type.log" | grep -qx "' JOB $offset - DUP @ CONTEXT @ ! 4 - DP !" || fail "$type forget line"
    expect_eq "$(board_line "$PORT" "BASE @ HEX HERE U. BASE !")" "$here_before" "HERE after the upload on $type"
    [ "$type" = 6630Fig ] && grep -q 'FD14' "$work/u$type.log" && fail "4410 set-up line sent to a 6630"
    stop_board
done

# --- usage and link faults
kvr upload "$work/x" --start 3C00 >/dev/null 2>&1
expect_eq "$?" 3 "upload without --end"
kvr upload "$work/x" --start 3C00 --end 3C00 >/dev/null 2>&1
expect_eq "$?" 3 "empty range"
kvr upload "$work/x" --start 3C00 --end 3C10 --format bin >/dev/null 2>&1
expect_eq "$?" 3 "unknown format"
kvr reflash "$work/squares.MOT" --type 6630Fig >/dev/null 2>&1
expect_eq "$?" 3 "reflash on a 6630"
stop_board
# A board that goes away mid-upload: the records that came are kept.
start_board slow --type 4410ANS --baud 9600
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
kvr reflash "$work/squares.MOT" >/dev/null 2>&1
expect_eq "$?" 2 "reflash without a board"

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
