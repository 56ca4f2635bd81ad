#!/usr/bin/env bash
# The PROMs menu of the real program on a simulated KVR4410F: an example
# compiled with F8 is uploaded as S-records and as Intel hex through the
# upload dialog and both files are checked against the board's memory; the
# re-flash dialog writes the S-record file into the flash, which holds it
# after the board restarts; a bad S-record file is refused with the flash
# untouched.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"
source "${KVR_SOURCE_DIR:?}/tests/prom/e2e/image_lib.sh"

start_display
flash="$E2E_DIR/flash.bin"
start_board --type 4410F --flash "$flash" --log "$E2E_DIR/board.log"

src="$E2E_DIR/src"
out="$E2E_DIR/out"
mkdir -p "$SETTINGS_DIR" "$src" "$out"
cp "$KVR_SOURCE_DIR"/examples/*.KVR "$src/"
printf '[Parameters]\r\nKVR-PC version=3.20\r\nKVR computer type=4410ANS\r\nOpening dialogue=OFF\r\nWizard question=OFF\r\nIntercharacter delay - KVR4410=0\r\nTimeout=3000\r\n' \
    >"$SETTINGS_DIR/KVR-PC.INI"

log_has() { grep -qxF "$1" "$E2E_DIR/board.log"; }
lines_sent() { wc -l <"$E2E_DIR/board.log"; }
# start FILE: kvr-pc on FILE, connected and greeted; sets FRAME.
start() {
    local mark wid
    mark=$(lines_sent)
    start_pc --simulator "127.0.0.1:$BOARD_PORT" "$1"
    local deadline=$((SECONDS + 30))
    FRAME=""
    while [ -z "$FRAME" ]; do
        [ $SECONDS -lt $deadline ] || fail "not connected; windows: $(visible_windows)"
        for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
            keys "$wid" Return || true
        done
        sleep 0.3
        FRAME=$(window_id '^KVR-PC for Windows - KVR4410 ANS Forth - .* - connected$') || true
    done
    # The caption says connected while the connect message may still be up.
    greeted() {
        tail -n +$((mark + 1)) "$E2E_DIR/board.log" | grep -q START && return 0
        for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
            keys "$wid" Return || true
        done
        return 1
    }
    wait_until 10 greeted || fail "board not greeted"
    sleep 1
}
stop() {
    keys "$FRAME" alt+f
    sleep 0.3
    xdotool key x
    wait_exit 10 "$PC_PID" || fail "kvr-pc did not exit"
}
forgets() { grep -cxF "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !" "$E2E_DIR/board.log" || true; }
# upload NAME [FORMAT-KEY]: the upload dialog from 3C00 to the end it offers.
upload() {
    local before dialog
    before=$(forgets)
    keys "$FRAME" alt+p u
    dialog=$(wait_window 10 '^Upload from KVR to PROM file$')
    [ -n "${2:-}" ] && keys "$dialog" "$2"
    keys "$dialog" alt+s ctrl+a
    type_text "$dialog" "3C00"
    keys "$dialog" alt+f ctrl+a
    type_text "$dialog" "$out/$1"
    keys "$dialog" Return
    wait_until 20 eval '[ "$(forgets)" -gt "$before" ]' || fail "upload $1 did not end"
    sleep 0.5
    screenshot "upload-$1"
    keys "$dialog" Return
    wait_until 5 eval '! has_window "^Upload from KVR to PROM file$"' || fail "upload dialog still open"
}

# --- compile, upload as S-records and as Intel hex
start "$src/SQUARES.KVR"
keys "$FRAME" Tab F8
wait_until 20 log_has "BASE @ HEX HERE U. BASE !" || fail "example not compiled"
sleep 1
upload squares
upload squares-hex alt+i
stop
[ -f "$out/squares.MOT" ] && [ -f "$out/squares-hex.INT" ] || fail "images missing: $(ls "$out")"
reply=$(board_line "$BOARD_PORT" "BASE @ HEX HERE U. BASE !")
end=$(awk '{ print $(NF - 1) }' <<<"$reply")
[ -n "$end" ] || fail "HERE not read: $reply"
board_bytes "$BOARD_PORT" 3C00 "$end" >"$E2E_DIR/board.bytes"
[ "$(wc -l <"$E2E_DIR/board.bytes")" -eq $((16#$end - 16#3C00)) ] || fail "C@ read $(wc -l <"$E2E_DIR/board.bytes") bytes up to $end"
parse_image "$out/squares.MOT" srec 3C00 >"$E2E_DIR/srec.bytes" || fail "S-record image"
parse_image "$out/squares-hex.INT" ihex 3C00 >"$E2E_DIR/ihex.bytes" || fail "Intel hex image"
cmp -s "$E2E_DIR/srec.bytes" "$E2E_DIR/board.bytes" || fail "S-record image differs from the board's memory"
cmp -s "$E2E_DIR/ihex.bytes" "$E2E_DIR/board.bytes" || fail "Intel hex image differs from the board's memory"

# --- re-flash; then a bad file, refused with the flash as it was
# reflash FILE: the re-flash dialog, its file dialog and the file's name.
reflash() {
    keys "$FRAME" alt+p r
    DIALOG=$(wait_window 10 '^Re-Flash KVR4410F$')
    keys "$DIALOG" Return
    local files
    files=$(wait_window 10 '^PROM programmer file to download to KVR4410F$')
    keys "$files" ctrl+a
    type_text "$files" "$1"
    keys "$files" Return
}
flash_holds_image() {
    od -An -v -tx1 -N "$(wc -l <"$E2E_DIR/board.bytes")" "$flash" | tr -s ' ' '\n' | grep . | tr a-f A-F \
        | cmp -s - "$E2E_DIR/board.bytes"
}
start "$src/SQUARES.KVR"
reflash "$out/squares.MOT"
wait_until 30 flash_holds_image || fail "the flash was not written"
wait_until 10 log_has "REFLASH" || fail "REFLASH not sent"
sleep 3
screenshot reflash-done
keys "$DIALOG" Return
wait_until 5 eval '! has_window "^Re-Flash KVR4410F$"' || fail "re-flash dialog still open"

cp "$flash" "$E2E_DIR/flash.before"
printf 'S1130000000102030405060708090A0B0C0D0E0F74\r\nS3090000880041424308\r\n' >"$out/bad.mot"
reflash "$out/bad.mot"
box=$(wait_window 20 '^KVR-PC for Windows$')
screenshot bad-srecord
keys "$box" Return
sleep 1
keys "$DIALOG" Escape
stop
cmp -s "$flash" "$E2E_DIR/flash.before" || fail "a bad S-record file changed the flash"
[ "$(grep -cx REFLASH "$E2E_DIR/board.log")" -eq 1 ] || fail "REFLASH sent for the bad file"

# --- the flash outlives the board
kill "$BOARD_PID" && wait "$BOARD_PID" 2>/dev/null
start_board --type 4410F --flash "$flash"
flash_end=$(printf '%X' $((16#8800 + $(wc -l <"$E2E_DIR/board.bytes"))))
board_bytes "$BOARD_PORT" 8800 "$flash_end" | cmp -s - "$E2E_DIR/board.bytes" || fail "the restarted board's flash differs"
echo "prom window: ok"
