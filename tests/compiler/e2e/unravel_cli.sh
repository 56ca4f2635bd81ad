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
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_eq() { [ "$1" == "$2" ] || fail "$3: expected '$2', got '$1'"; }

"$BIN/kvr-board" --port 0 --no-heartbeat --log "$work/board.log" > "$work/board.out" 2> "$work/board.err" &
board_pid=$!
port=""
for _ in $(seq 1 200); do
    port=$(sed -n 's/^listening on 127\.0\.0\.1:\([0-9]*\)$/\1/p' "$work/board.out")
    [ -n "$port" ] && break
    sleep 0.05
done
[ -n "$port" ] || { echo "kvr-board did not start:"; cat "$work/board.err"; exit 1; }

settings="$work/settings"
mkdir -p "$settings" "$work/src" "$work/extra"
crlf() { sed 's/$/\r/' > "$1"; }
crlf "$settings/KVR-PC.INI" <<INI
[Parameters]
KVR computer type=4410ANS
Intercharacter delay - KVR4410=0
Timeout=3000
Extra source file search paths=$work/extra/;
INI
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
