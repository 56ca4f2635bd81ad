#!/usr/bin/env bash
# The PROMs menu of the real program on a simulated KVR4410F: an example
# compiled with F8 is uploaded as S-records and as Intel hex through the
# upload dialog and both files are checked against the board's memory; a
# bad S-record file is refused with the flash untouched; the re-flash
# dialog writes the S-record file into the flash, which holds it after the
# board restarts.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"
source "${KVR_SOURCE_DIR:?}/tests/prom/e2e/image_lib.sh"

start_display
flash="$E2E_DIR/flash.bin"
start_board --type 4410F --flash "$flash" --log "$E2E_DIR/board.log"
cp "$KVR_SOURCE_DIR"/examples/*.KVR "$E2E_DIR/"
# The re-flash paces its bytes by the baud rate; pacing is not under test.
write_settings <<<'Baud rate=38400'
log_has() { grep -qxF "$1" "$E2E_DIR/board.log"; }
forgets() { grep -cxF "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !" "$E2E_DIR/board.log" || true; }
# upload [FORMAT-KEY]: the upload dialog from 3C00 to the end it offers,
# into the file it offers, named after the source.
upload() {
    local before dialog
    before=$(forgets)
    keys "$FRAME" alt+p u
    dialog=$(wait_window 10 '^Upload from KVR to PROM file$')
    [ -n "${1:-}" ] && keys "$dialog" "$1"
    keys "$dialog" alt+s ctrl+a
    type_text "$dialog" "3C00"
    keys "$dialog" Return
    wait_until 20 eval '[ "$(forgets)" -gt "$before" ]' || fail "upload ${1:-} did not end"
    # Return closes the dialog once the check is shown.
    wait_until 10 eval 'keys "$dialog" Return; ! has_window "^Upload from KVR to PROM file$"' || fail "upload dialog still open"
}

start_connected "$E2E_DIR/SQUARES.KVR"
keys "$FRAME" Tab F8
wait_until 20 log_has "BASE @ HEX HERE U. BASE !" || fail "example not compiled"
upload
upload alt+i
kill "$PC_PID"
end=$(board_line "$BOARD_PORT" "BASE @ HEX HERE U. BASE !" | awk '{ print $(NF - 1) }')
board_bytes "$BOARD_PORT" 3C00 "$end" >"$E2E_DIR/memory"
[ "$(wc -l <"$E2E_DIR/memory")" -eq $((16#$end - 16#3C00)) ] || fail "C@ read $(wc -l <"$E2E_DIR/memory") bytes up to $end"
parse_image "$E2E_DIR/SQUARES.MOT" srec 3C00 | cmp -s - "$E2E_DIR/memory" || fail "S-record image differs from the board's memory"
parse_image "$E2E_DIR/SQUARES.INT" ihex 3C00 | cmp -s - "$E2E_DIR/memory" || fail "Intel hex image differs from the board's memory"

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
    od -An -v -tx1 -N "$(wc -l <"$E2E_DIR/memory")" "$flash" | tr -s ' ' '\n' | grep . | tr a-f A-F | cmp -s - "$E2E_DIR/memory"
}
start_connected "$E2E_DIR/SQUARES.KVR"
cp "$flash" "$E2E_DIR/flash.before" 2>/dev/null || : >"$E2E_DIR/flash.before"
printf 'S1130000000102030405060708090A0B0C0D0E0F74\r\nS3090000880041424308\r\n' >"$E2E_DIR/bad.mot"
reflash "$E2E_DIR/bad.mot"
box=$(wait_window 20 '^KVR-PC for Windows$')
screenshot bad-srecord
keys "$box" Return
wait_until 10 eval '! has_window "^KVR-PC for Windows$"' || fail "message box still open"
cmp -s "$flash" "$E2E_DIR/flash.before" || fail "a bad S-record file changed the flash"
log_has REFLASH && fail "REFLASH sent for the bad file"
keys "$DIALOG" Escape
reflash "$E2E_DIR/SQUARES.MOT"
wait_until 30 flash_holds_image || fail "the flash was not written"
screenshot reflash-done

# --- the flash outlives the board
kill "$PC_PID" "$BOARD_PID" && wait "$BOARD_PID" 2>/dev/null
start_board --type 4410F --flash "$flash"
board_bytes "$BOARD_PORT" 8800 "$(printf '%X' $((16#8800 + $(wc -l <"$E2E_DIR/memory"))))" | cmp -s - "$E2E_DIR/memory" \
    || fail "the restarted board's flash differs"
echo "prom window: ok"
