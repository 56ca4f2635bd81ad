#!/usr/bin/env bash
# Edit and compile with an error, in the real program on the simulated
# board: a program opened from the command line is edited (a line past 80
# characters raises the box) and saved; F8 compiles it across INCLUDE
# files until the board refuses a word in a file reached through a folder;
# that file opens with the failing line selected, typing replaces it, and
# once it is saved and closed F8 compiles the program to its end.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"
src="$E2E_DIR/src"
mkdir -p "$src/SUB"
write_settings </dev/null
crlf "$src/MAIN.KVR" <<'SRC'
#CONDITION FAST
INCLUDE io   
#IF SLOW
NO-SUCH-WORD
#ELSE
INCLUDE SUB\LIB
#ENDIF
SRC
crlf "$src/IO.KVR" <<<': IO-WORD 3 ;'
crlf "$src/SUB/LIB.KVR" <<'SRC'
: LIB-A 1 ;
: LIB-B LIB-A NO-WORD ;
: FIN LIB-B IO-WORD + DROP ;
SRC
ini="$SETTINGS_DIR/KVR-PC.INI"
upper() { tr '[:lower:]' '[:upper:]' <<<"$1"; }
end_question='^BASE @ HEX HERE U\. BASE !$'

start_connected "$src/MAIN.KVR"
# The terminal comes forward after the greeting; a click in the editor (top
# left of the frame) brings it back. The active child's title bar is blue.
read -r fx fy < <(xdotool getwindowgeometry --shell "$FRAME" | awk -F= '/^X=/{x=$2} /^Y=/{y=$2} END{print x, y}')
editor_active() {
    import -window root -crop "1x60+$((fx + 300))+$((fy + 10))" txt:- 2>/dev/null | grep -oE '\([0-9]+,[0-9]+,[0-9]+' \
        | tr -d '(' | awk -F, '$3 > $1 + 60 { found = 1 } END { exit !found }'
}
wait_until 10 eval '! editor_active' || fail "terminal not brought forward after start-up"
xdotool mousemove $((fx + 200)) $((fy + 200)) click 1
wait_until 5 editor_active || fail "editor window not brought forward"

# The 81st character of a line raises the box; the line is taken back
# and the last line typed instead. Saving drops trailing blanks.
keys "$FRAME" ctrl+End
type_text "$FRAME" "$(printf 'A%.0s' $(seq 1 81))"
box=$(wait_window 10 '^KVR-PC for Windows$')
keys "$box" Return
wait_until 10 eval '! has_window "^KVR-PC for Windows\$"' || fail "long-line box did not close"
xdotool key --clearmodifiers --repeat 81 --delay 5 BackSpace
type_text "$FRAME" "FIN"
keys "$FRAME" ctrl+s
saved() { tr -d '\r' < "$src/MAIN.KVR" | sed -n "$1p"; }
wait_until 10 eval '[ "$(saved 8)" == FIN ]' || fail "program not saved: $(cat -A "$src/MAIN.KVR")"
[ "$(saved 2)" == "INCLUDE io" ] || fail "trailing blanks kept: $(cat -A "$src/MAIN.KVR")"

# F8: the board refuses a word of the library, which opens at that line.
keys "$FRAME" F8
wait_until 20 grep -qF "RecentFile1=$(upper "$src/SUB/LIB.KVR")" "$ini" || fail "library not opened: $(cat "$ini")"
grep -q "NO-SUCH-WORD" "$E2E_DIR/board.log" && fail "a skipped line reached the board"
grep -q "^: FIN " "$E2E_DIR/board.log" && fail "compile went on after the error"
grep -q "$end_question" "$E2E_DIR/board.log" && fail "error compile asked for HERE"
# Saved and closed, the program's window has the keys again: F8 compiles it.
type_text "$FRAME" ": LIB-B LIB-A 2 ;"
keys "$FRAME" ctrl+s ctrl+F4 F8
wait_until 20 grep -q "$end_question" "$E2E_DIR/board.log" || fail "fixed program did not finish: $(cat "$E2E_DIR/board.log")"
[ "$(tr -d '\r' < "$src/SUB/LIB.KVR" | sed -n 2p)" == ": LIB-B LIB-A 2 ;" ] \
    || fail "the failing line was not the selection: $(cat -A "$src/SUB/LIB.KVR")"
expect=$(printf ': IO-WORD 3 ;\n: LIB-A 1 ;\n: LIB-B LIB-A 2 ;\n: FIN LIB-B IO-WORD + DROP ;\nFIN')
got=$(sed -n '/NO-WORD ;$/,$p' "$E2E_DIR/board.log" | sed 1d | grep -v "$end_question")
[ "$got" == "$expect" ] || fail "board got after the error: $got"
echo "compile window: ok"
