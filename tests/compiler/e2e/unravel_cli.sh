#!/usr/bin/env bash
# kvr unravel: the flat file of a tree of INCLUDE files sends the board
# exactly the lines the tree sends; the line map, stripping, a missing file.
set -u
BIN=${KVR_BIN_DIR:?}
work=$(mktemp -d)
board_pid=""
cleanup() {
    [ -n "$board_pid" ] && kill "$board_pid" 2>/dev/null && wait "$board_pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
source "${KVR_SOURCE_DIR:?}/tests/e2e/cli_lib.sh"

start_main_board

board_settings
crlf "$work/src/Main.kvr" <<'SRC'
\ main program
#CONDITION FAST
INCLUDE io
#IF SLOW
: SPEED 1 ;
#ELSE
: SPEED 9 ;
#ENDIF
INCLUDE mid   \ from the extra folder
QUICK ON
: SQ   DUP  *   ;   \ compacted
QUICK OFF
INCLUDE io
SPEED SQ IO-WORD MID-WORD + + DROP
SRC
crlf "$work/src/IO.KVR" <<'SRC'
: IO-WORD 3 ;
SRC
crlf "$work/extra/MID.KVR" <<'SRC'
: MID-WORD  5 ;   ( five )
INCLUDE IO
   \ indented comment
SRC

compile() {
    local before
    before=$(wc -l < "$work/board.log")
    "$BIN/kvr" --settings-dir "$settings" compile "$1" --remote "127.0.0.1:$port" > "$work/compile.out" 2>&1 \
        || fail "compile of $1: $(cat "$work/compile.out")"
    tail -n +$((before + 1)) "$work/board.log"
}
unravel() { "$BIN/kvr" --settings-dir "$settings" unravel "$@"; }

tree=$(compile "$work/src/Main.kvr")
unravel "$work/src/Main.kvr" -o "$work/flat.kvr" --map "$work/flat.map" > "$work/out" 2> "$work/err"
expect_eq "$?" 0 "unravel exit status"
[ -s "$work/err" ] && fail "unexpected messages: $(cat "$work/err")"
flat=$(compile "$work/flat.kvr")
expect_eq "$flat" "$tree" "lines the board received"
echo "$tree" | grep -q "^: MID-WORD  5 ;   ( five )$" || fail "tree lines: $tree"

# One map line per output line; MID's first line is the flat file's ninth.
expect_eq "$(wc -l < "$work/flat.map")" "$(wc -l < "$work/flat.kvr")" "map lines"
expect_eq "$(sed -n 9p "$work/flat.map" | tr -d '\r')" "9	$work/extra/MID.KVR	1" "map entry"
expect_eq "$(sed -n 9p "$work/flat.kvr" | tr -d '\r')" ": MID-WORD  5 ;   ( five )" "flat line 9"

unravel "$work/src/Main.kvr" -o "$work/strip.kvr" --strip > /dev/null 2>&1
grep -q '\\' "$work/strip.kvr" && fail "comments left: $(cat "$work/strip.kvr")"
grep -q "^: MID-WORD 5 ;"$'\r'"$" "$work/strip.kvr" || fail "not compacted: $(cat -A "$work/strip.kvr")"

printf 'BEFORE\r\nINCLUDE NOWHERE\r\nAFTER\r\n' > "$work/src/MISS.KVR"
unravel "$work/src/MISS.KVR" -o "$work/miss.kvr" > /dev/null 2> "$work/err"
expect_eq "$?" 1 "missing include exit status"
grep -q "Halted unravel process, file NOWHERE.KVR not found" "$work/err" || fail "no halt message: $(cat "$work/err")"
expect_eq "$(cat "$work/miss.kvr")" "BEFORE"$'\r' "output kept"

unravel "$work/src/Main.kvr" > /dev/null 2>&1
expect_eq "$?" 3 "no output usage status"
cp "$work/src/IO.KVR" "$work/src/IO.TXT"
unravel "$work/src/IO.TXT" -o "$work/x.kvr" > /dev/null 2>&1
expect_eq "$?" 3 "wrong extension status"

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
