#!/usr/bin/env bash
# Make database and Unravel INCLUDEs from an editor window of the real
# program: the database and suggestions report of a program with an INCLUDE
# file, the build that meets a missing INCLUDE file, and the flat file.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"
src="$E2E_DIR/src"
mkdir -p "$src" "$SETTINGS_DIR"
crlf() { sed 's/$/\r/' > "$1"; }
crlf "$SETTINGS_DIR/KVR-PC.INI" <<INI
[Parameters]
KVR-PC version=3.20
KVR computer type=4410ANS
Opening dialogue=OFF
Wizard question=OFF
Intercharacter delay - KVR4410=0
Timeout=3000
INI
program() {
    crlf "$src/MAIN.KVR" <<'SRC'
\ squares
INCLUDE lib
: SQUARES  10 0 DO I SQUARE . LOOP ;
: UNUSED  OVER OVER + ;
SRC
}
program
crlf "$src/LIB.KVR" <<'SRC'
: SQUARE  DUP * ;
SRC

box() { window_id '^KVR-PC for Windows$'; }
# answer KEY: the next message box gets KEY and goes away.
answer() {
    local wid
    wid=$(wait_window 20 '^KVR-PC for Windows$')
    keys "$wid" "$1"
    wait_until 10 bash -c "! xdotool search --onlyvisible --name '^KVR-PC for Windows\$' | grep -qx $wid" \
        || fail "box did not close"
}

start_pc --simulator "127.0.0.1:$BOARD_PORT" "$src/MAIN.KVR"
deadline=$((SECONDS + 30))
FRAME=""
while [ -z "$FRAME" ]; do
    [ $SECONDS -lt $deadline ] || fail "not connected; windows: $(visible_windows)"
    for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
        keys "$wid" Return || true
    done
    FRAME=$(window_id '^KVR-PC for Windows - .* - connected$') || true
done
# The caption says connected while the connect message may still be up.
greeted() {
    grep -q START "$E2E_DIR/board.log" && [ -z "$(box)" ] && return 0
    for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
        keys "$wid" Return || true
    done
    return 1
}
wait_until 20 greeted || fail "board not greeted"
# Tab takes the focus from the terminal to the editor window once; later the
# editor is active again when the words window is closed.
keys "$FRAME" Tab
editor_menu() { keys "$FRAME" "$@"; }
close_words() { keys "$FRAME" Escape; }

# --- Definitions > Make database, with suggestions
editor_menu alt+d m
answer Return   # make a new database: OK
answer Return   # suggestions: Yes
wait_until 20 grep -q "Total number of definitions used" "$src/MAIN.SUG" || fail "no report: $(ls "$src")"
[ -s "$src/MAIN.MDB" ] || fail "no database"
grep -q "^: UNUSED 2DUP + ;" "$src/MAIN.SUG" || fail "no suggestion: $(cat "$src/MAIN.SUG")"
grep -q "^SQUARES  *.*MAIN.KVR" "$src/MAIN.SUG" || fail "SQUARES not listed as unreferenced"
screenshot words-made
close_words

# --- a missing INCLUDE file: the opener says so, the build ends
printf 'INCLUDE NOWHERE\r\n: AFTER ;\r\n' > "$src/MAIN.KVR"
editor_menu alt+d m
answer Return   # make a new database: OK
answer Return   # suggestions: Yes
answer Return   # MAIN.SUG exists: overwrite
wid=$(wait_window 20 '^KVR-PC for Windows$')
screenshot missing-include
keys "$wid" Return
wait_until 10 bash -c "[ \$(grep -c . '$src/MAIN.SUG') -eq 3 ]" || fail "report: $(cat "$src/MAIN.SUG")"

close_words

# --- File > Unravel INCLUDEs, as they stand, to a file named in the dialog
program
editor_menu alt+f u
answer alt+n    # not stripped
dialog=$(wait_window 20 '^Save unravelled file as$')
keys "$dialog" ctrl+a
type_text "$dialog" "$E2E_DIR/flat.kvr"
keys "$dialog" Return
wait_until 10 test -s "$E2E_DIR/flat.kvr" || fail "no flat file"
expected=$(printf '\\ squares\r\n: SQUARE  DUP * ;\r\n: SQUARES  10 0 DO I SQUARE . LOOP ;\r\n: UNUSED  OVER OVER + ;\r')
[ "$(cat "$E2E_DIR/flat.kvr")" = "$expected" ] || fail "flat file: $(cat -A "$E2E_DIR/flat.kvr")"
screenshot unravelled
echo "words window: ok"
