#!/usr/bin/env bash
# Make database from an editor window of the real program, on a program
# with an INCLUDE file; then the words window takes the user from a word to
# its definition in the INCLUDE file and back to the word that uses it.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"
src="$E2E_DIR/src"
mkdir -p "$src"
write_settings </dev/null
crlf "$src/MAIN.KVR" <<'SRC'
\ squares
INCLUDE lib
: SQUARES  10 0 DO I SQUARE . LOOP ;
SRC
crlf "$src/LIB.KVR" <<'SRC'
: SQUARE  DUP * ;
SRC

# answer KEY: the next message box gets KEY and goes away.
answer() {
    local wid
    wid=$(wait_window 20 '^KVR-PC for Windows$')
    keys "$wid" "$1"
    wait_until 10 bash -c "! xdotool search --onlyvisible --name '^KVR-PC for Windows\$' | grep -qx $wid" \
        || fail "box did not close"
}

start_connected "$src/MAIN.KVR"
keys "$FRAME" Tab   # from the terminal to the editor window
keys "$FRAME" alt+d m
answer Return       # make a new database: OK
answer Return       # suggestions: Yes
wait_until 20 grep -q "Total number of definitions used" "$src/MAIN.SUG" || fail "no report: $(ls "$src")"
grep -q "^SQUARES  *.*MAIN.KVR" "$src/MAIN.SUG" || fail "SQUARES not listed as unreferenced"
keys "$FRAME" Escape   # the words window closes, the editor is active again

# Ctrl+F1 on SQUARE selects it in the words window; Enter opens LIB.KVR
# with its definition selected, which typing replaces.
keys "$FRAME" ctrl+Home Down Down $(printf 'Right %.0s' {1..22}) ctrl+F1   # DO I S|QUARE
screenshot words-square
keys "$FRAME" Return
type_text "$FRAME" '\ gone SQUARES'
keys "$FRAME" ctrl+s
wait_until 10 grep -q '^\\ gone SQUARES' "$src/LIB.KVR" || fail "not at SQUARE: $(cat -A "$src/LIB.KVR")"
# Back in the words window on SQUARES, and on to its definition.
keys "$FRAME" ctrl+F1 Return
type_text "$FRAME" '\ back'
keys "$FRAME" ctrl+s
wait_until 10 grep -q '^\\ back' "$src/MAIN.KVR" || fail "not at SQUARES: $(cat -A "$src/MAIN.KVR")"
sed -n 3p "$src/MAIN.KVR" | grep -q '^\\ back' || fail "wrong line: $(cat -A "$src/MAIN.KVR")"
screenshot words-jumped
echo "words window: ok"
