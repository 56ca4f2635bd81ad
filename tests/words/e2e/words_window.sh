#!/usr/bin/env bash
# Make database and Unravel INCLUDEs from an editor window of the real
# program: the database and suggestions report of a program with an INCLUDE
# file, the words window taking the user from a word to its definition and
# back, the build that meets a missing INCLUDE file, and the flat file.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"
src="$E2E_DIR/src"
mkdir -p "$src"
write_settings </dev/null
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

# answer KEY: the next message box gets KEY and goes away.
answer() {
    local wid
    wid=$(wait_window 20 '^KVR-PC for Windows$')
    keys "$wid" "$1"
    wait_until 10 bash -c "! xdotool search --onlyvisible --name '^KVR-PC for Windows\$' | grep -qx $wid" \
        || fail "box did not close"
}

start_connected "$src/MAIN.KVR"
# Tab takes the focus from the terminal to the editor window once; later the
# editor is active again when the words window is closed.
keys "$FRAME" Tab
close_words() { keys "$FRAME" Escape; }

# --- Definitions > Make database, with suggestions
keys "$FRAME" alt+d m
answer Return   # make a new database: OK
answer Return   # suggestions: Yes
wait_until 20 grep -q "Total number of definitions used" "$src/MAIN.SUG" || fail "no report: $(ls "$src")"
[ -s "$src/MAIN.MDB" ] || fail "no database"
grep -q "^: UNUSED 2DUP + ;" "$src/MAIN.SUG" || fail "no suggestion: $(cat "$src/MAIN.SUG")"
grep -q "^SQUARES  *.*MAIN.KVR" "$src/MAIN.SUG" || fail "SQUARES not listed as unreferenced"
screenshot words-made
close_words

# --- Ctrl+F1 on SQUARE in MAIN.KVR selects it in the words window; Enter
# opens LIB.KVR with its definition selected, which typing replaces
keys "$FRAME" ctrl+Home Down Down $(printf 'Right %.0s' {1..22})   # DO I S|QUARE
keys "$FRAME" ctrl+F1
screenshot words-square
keys "$FRAME" Return
type_text "$FRAME" '\ gone SQUARES'
keys "$FRAME" ctrl+s
wait_until 10 grep -q '^\\ gone SQUARES' "$src/LIB.KVR" || fail "not at SQUARE: $(cat -A "$src/LIB.KVR")"
# --- back in the words window on SQUARES, and on to its definition
keys "$FRAME" ctrl+F1
keys "$FRAME" Return
type_text "$FRAME" '\ back'
keys "$FRAME" ctrl+s
wait_until 10 grep -q '^\\ back' "$src/MAIN.KVR" || fail "not at SQUARES: $(cat -A "$src/MAIN.KVR")"
sed -n 3p "$src/MAIN.KVR" | grep -q '^\\ back' || fail "wrong line: $(cat -A "$src/MAIN.KVR")"
screenshot words-jumped
crlf "$src/LIB.KVR" <<'SRC'
: SQUARE  DUP * ;
SRC

# --- Ctrl+Space in the terminal completes a word of the database
keys "$FRAME" alt+w i
type_text "$FRAME" "5 SQUAR"
keys "$FRAME" ctrl+space Return
wait_until 10 grep -q "^5 SQUARE \?\$" "$E2E_DIR/board.log" || fail "not completed: $(tail -3 "$E2E_DIR/board.log")"
keys "$FRAME" Tab

# --- a missing INCLUDE file: the opener says so, the build ends
printf 'INCLUDE NOWHERE\r\n: AFTER ;\r\n' > "$src/MAIN.KVR"
keys "$FRAME" alt+d m
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
keys "$FRAME" alt+f u
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
