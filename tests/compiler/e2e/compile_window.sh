#!/usr/bin/env bash
# F8 in an editor window of the real program on the simulated board: a
# program with nested INCLUDE files across folders finishes; an unknown word
# stops the compile and the failing line is selected in the editor (typing
# replaces it); F2 in the editor halts a long compile.
source "${KVR_SOURCE_DIR:?}/tests/e2e/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"

src="$E2E_DIR/src"
extra="$E2E_DIR/extra"
mkdir -p "$SETTINGS_DIR/program" "$src" "$extra"
write_settings <<INI
Extra source file search paths=$extra/;
[Colors]
Status box background   red=255
Status box background green=0
Status box background  blue=255
Status box foreground   red=0
Status box foreground green=255
Status box foreground  blue=255
INI

crlf "$src/MAIN.KVR" <<'SRC'
#CONDITION FAST
INCLUDE io
#IF SLOW
NO-SUCH-WORD
#ELSE
INCLUDE mid
: FIN  MID-WORD PROG-WORD + IO-WORD + ;
FIN DROP
SRC
crlf "$src/IO.KVR" <<'SRC'
: IO-WORD 3 ;
SRC
crlf "$extra/MID.KVR" <<'SRC'
: MID-WORD 5 ;
#ENDIF
INCLUDE proglib
SRC
crlf "$SETTINGS_DIR/program/PROGLIB.KVR" <<'SRC'
: PROG-WORD  IO-WORD 1+ ;
SRC

# The board keeps its log open: new lines are told apart by a mark, not by
# emptying the file.
MARK=0
mark() { MARK=$(wc -l < "$E2E_DIR/board.log"); }
since_mark() { tail -n +$((MARK + 1)) "$E2E_DIR/board.log"; }
sent() { since_mark | grep -c . || true; }
# start FILE: kvr-pc on FILE, past the connect message; sets FRAME.
start() {
    mark
    start_connected "$1"
    # The terminal comes forward after the greeting; Tab takes the focus
    # to the editor window.
    sleep 1
    keys "$FRAME" Tab
    sleep 0.3
}

stop() {
    keys "$FRAME" alt+f
    sleep 0.3
    xdotool key x
    wait_exit 10 "$PC_PID" || fail "kvr-pc did not exit"
}

end_question='^BASE @ HEX HERE U\. BASE !$'

# --- the program finishes
start "$src/MAIN.KVR"
keys "$FRAME" F8
wait_until 20 eval 'since_mark | grep -q "$end_question"' \
    || fail "no FINISHED (board got: $(since_mark))"
screenshot finished
grep -q "NO-SUCH-WORD" "$E2E_DIR/board.log" && fail "a skipped line reached the board"
grep -q "^FIN DROP$" "$E2E_DIR/board.log" || fail "last line not compiled"
stop

# --- an unknown word: the failing line is selected in the editor
crlf "$src/BAD.KVR" <<'SRC'
: GOOD 1 ;
: USES GOOD UNKNOWN-WORD ;
: LATER 2 ;
SRC
start "$src/BAD.KVR"
keys "$FRAME" F8
wait_until 20 eval 'since_mark | grep -q UNKNOWN-WORD' || fail "bad line not sent"
sleep 1
screenshot board-error
since_mark | grep -q "LATER" && fail "compile went on after the error"
since_mark | grep -q "$end_question" && fail "error compile asked for HERE"
# Typing replaces the selected line; F8 saves the window and sends the
# text again, so file and board show which line was selected.
type_text "$FRAME" "2 DROP"
mark
keys "$FRAME" F8
wait_until 20 eval 'since_mark | grep -q "$end_question"' || fail "second compile did not finish"
expect=$(printf ': GOOD 1 ;\n2 DROP\n: LATER 2 ;')
[ "$(tr -d '\r' < "$src/BAD.KVR")" == "$expect" ] || fail "the failing line was not the selection: $(cat -v "$src/BAD.KVR")"
[ "$(since_mark | grep -v -e START -e "$end_question")" == "$expect" ] || fail "board got: $(since_mark)"
stop

# --- an error in a file reached through a folder INCLUDE, followed as a
# user would: the file's one window shows the line, a report line opens
# its file and line, and a compiled selection's error is shown where the
# text was selected.
crlf "$src/FOLDER.KVR" <<'SRC'
\ main
INCLUDE SUB\LIB
LIB-D DROP
SRC
mkdir -p "$src/SUB"
crlf "$src/SUB/LIB.KVR" <<'SRC'
: LIB-A 1 ;
\ the next definition uses a word the board lacks
: LIB-B LIB-A NO-WORD ;
: LIB-C NO-WORD2 ;
: LIB-D 4 ;
SRC
line_of() { sed -n "$2p" "$1" | tr -d '\r'; }
errors() { since_mark | grep -c "$1" || true; }
start "$src/FOLDER.KVR"
keys "$FRAME" F8
wait_until 20 eval '[ "$(errors NO-WORD)" -eq 1 ]' || fail "first error not reached"
sleep 1
keys "$FRAME" F8   # the library's window has the keys; F8 compiles the program
wait_until 20 eval '[ "$(errors NO-WORD)" -eq 2 ]' || fail "second error not reached"
sleep 1
screenshot folder-include-error
# Closing the library's window leaves the program's: a second window on the
# library would take the keys instead.
keys "$FRAME" ctrl+F4
sleep 0.5
keys "$FRAME" ctrl+Home
type_text "$FRAME" '\ M '
keys "$FRAME" ctrl+s
wait_until 5 eval '[ "$(line_of "$src/FOLDER.KVR" 1)" == "\\ M \\ main" ]' \
    || fail "the error opened a second window (program: $(line_of "$src/FOLDER.KVR" 1), library: $(line_of "$src/SUB/LIB.KVR" 1))"

# Double-click on the report's error line: the library opens at that line.
# The report's text is cyan; the selected line is drawn in other colours,
# so the lowest band of cyan on the screen is the last unselected line.
report_line_point() {
    local shot=$E2E_DIR/report.png band
    import -window root "$shot"
    band=$(convert "$shot" -fill black +opaque '#00FFFF' -fill white -opaque '#00FFFF' -scale '1x!' \
        -threshold 0 txt:- | awk -F'[,:]' '/#FFFFFF/ { if ($2 != last + 1) top = $2; last = $2 } END { print top, last }')
    read -r band_top band_bottom <<<"$band"
    [ -n "$band_top" ] || return 1
    convert "$shot" -crop "x$((band_bottom - band_top + 1))+0+$band_top" +repage -fill black +opaque '#00FFFF' \
        -trim -format "%[fx:page.x + w / 2] $(((band_top + band_bottom) / 2))\n" info:
}
# A click in the report's empty part brings it in front of the editors.
import -window root "$E2E_DIR/report.png"
read -r x y < <(convert "$E2E_DIR/report.png" -fill black +opaque '#FF00FF' -trim \
    -format '%[fx:page.x + 10] %[fx:page.y + h - 5]\n' info:)
xdotool mousemove --sync "$x" "$y" click 1
sleep 0.5
read -r x y < <(report_line_point) || fail "report line not on the screen"
xdotool mousemove --sync "$x" "$y" click 1   # selects the include line
sleep 0.5
read -r x y < <(report_line_point) || fail "error line not on the screen"
xdotool mousemove --sync "$x" "$y" click --repeat 2 --delay 80 1
sleep 1
screenshot report-link
type_text "$FRAME" ': LIB-B LIB-A 2 ;'
keys "$FRAME" ctrl+s
wait_until 5 eval '[ "$(line_of "$src/SUB/LIB.KVR" 3)" == ": LIB-B LIB-A 2 ;" ]' \
    || fail "double-click did not open the failing line: $(line_of "$src/SUB/LIB.KVR" 3)"

# Ctrl+F8 on lines 3 to 5 of the library: the board refuses the second.
mark
keys "$FRAME" ctrl+Home Down Down shift+ctrl+End ctrl+F8
wait_until 20 eval '[ "$(errors NO-WORD2)" -eq 1 ]' || fail "selection not compiled"
sleep 1
screenshot selection-error
type_text "$FRAME" ': LIB-C 3 ;'
keys "$FRAME" ctrl+s
wait_until 5 eval '[ "$(line_of "$src/SUB/LIB.KVR" 4)" == ": LIB-C 3 ;" ]' \
    || fail "the selection's error was not shown in its window: $(line_of "$src/SUB/LIB.KVR" 4)"
# F8 now compiles the library, the file the selection was taken from.
mark
keys "$FRAME" F8
wait_until 20 eval 'since_mark | grep -q "$end_question"' || fail "the fixed library did not finish: $(since_mark)"
since_mark | grep -q "^: LIB-D 4 ;$" || fail "last line not compiled"
stop

# --- F2 in the editor halts a long compile
for i in $(seq 1 20000); do echo ": L$i $i ;"; done | crlf "$src/LONG.KVR"
start "$src/LONG.KVR"
keys "$FRAME" F8
wait_until 20 eval '[ "$(sent)" -gt 100 ]' || fail "long compile did not start"
keys "$FRAME" F2
sleep 1
before=$(sent)
sleep 1
[ "$(sent)" -le $((before + 2)) ] || fail "compile still running after F2 ($before, then $(sent) lines)"
since_mark | grep -q "^: L20000 " && fail "F2 came too late to test"
since_mark | grep -q "$end_question" && fail "halted compile asked for HERE"
screenshot halted
stop

# --- closing the frame during a compile halts it and ends the program
start "$src/LONG.KVR"
keys "$FRAME" F8
wait_until 20 eval '[ "$(sent)" -gt 100 ]' || fail "long compile did not start"
keys "$FRAME" alt+F4
wait_exit 2 "$PC_PID" || fail "kvr-pc still running 2 s after its frame was closed during a compile"
before=$(sent)
sleep 1
[ "$(sent)" -eq "$before" ] || fail "lines still reached the board after the program ended"
since_mark | grep -q "^: L20000 " && fail "the close came too late to test"
[ ! -e "$SETTINGS_DIR/kvr-pc.lck" ] || fail "the lock file was left behind"
echo "compile window: ok"
