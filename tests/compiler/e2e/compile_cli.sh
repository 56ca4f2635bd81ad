#!/usr/bin/env bash
# kvr compile and kvr unravel against the simulated board: a program of
# INCLUDE files in three folders with blocks across files; its unravelled
# flat file sends the board the same lines; the faults, JSON and Ctrl-C.
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
kvr() { "$BIN/kvr" --settings-dir "$settings" compile "$@" --remote "127.0.0.1:$port"; }
log() { tail -n +$((mark + 1)) "$work/board.log"; }

crlf "$work/src/Main.kvr" <<'SRC'
\ main program
#CONDITION FAST
INCLUDE io            \ in the source folder
#IF SLOW
INCLUDE never
#ELSEIF FAST
INCLUDE mid
QUICK ON
: SQ   DUP  *   ;   \ compacted
QUICK OFF
MID-WORD SQ PROG-WORD + DROP
SRC
crlf "$work/src/NEVER.KVR" <<<'NO-SUCH-WORD'
crlf "$work/src/IO.KVR" <<<': IO-WORD 3 ;'
crlf "$work/extra/MID.KVR" <<'SRC'
: MID-WORD 5 ;   ( five )
#ELSE
NO-SUCH-WORD
#ENDIF
INCLUDE proglib
INCLUDE io
SRC
crlf "$settings/program/PROGLIB.KVR" <<'SRC'
: IO-WORD 4 ;
	\ a tab-indented comment goes to the board
: PROG-WORD  IO-WORD 1+ ;
SRC

mark=$(wc -l < "$work/board.log")
out=$(kvr "$work/src/Main.kvr" 2> "$work/err")
expect_eq "$?" 0 "finished program exit status"
short() { [ ${#1} -gt 38 ] && echo "...${1: -34}" || echo "$1"; }
upper=$(tr a-z A-Z <<<"$work")
main=$(short "$upper/SRC/MAIN.KVR")
mid=$(short "$work/extra/MID.KVR")
expected="$main - line 3: FILE IO.KVR INCLUDED
$main - line 5: FILE NEVER.KVR INCLUDED
$main - line 7: FILE MID.KVR INCLUDED
$mid - line 5: FILE PROGLIB.KVR INCLUDED
$(short "$settings/program/PROGLIB.KVR") - line 1: IO-WORD NOT UNIQUE
$mid - line 6: FILE IO.KVR ALREADY COMPILED
$main - line 8: QUICK ON
$main - line 10: QUICK OFF"
expect_eq "$(head -n -1 <<<"$out")" "$expected" "report lines"
tail -n 1 <<<"$out" | grep -Eq "^$main - FINISHED at [0-9A-F]{1,4}$" || fail "no FINISHED at line: $out"
[ -s "$work/err" ] && fail "unexpected messages: $(cat "$work/err")"
tree=$(log)
grep -q "NO-SUCH-WORD\|INCLUDE" <<<"$tree" && fail "a skipped branch or an INCLUDE line reached the board"
grep -q "^: SQ DUP \* ;$" <<<"$tree" || fail "quick compile did not compact the line"

# The unravelled program sends what the tree sends; its map has a line per line.
"$BIN/kvr" --settings-dir "$settings" unravel "$work/src/Main.kvr" -o "$work/flat.kvr" --map "$work/flat.map" \
    > /dev/null 2> "$work/err"
expect_eq "$?" 0 "unravel exit status"
mark=$(wc -l < "$work/board.log")
kvr "$work/flat.kvr" > /dev/null 2>&1 || fail "the flat file did not compile"
expect_eq "$(log)" "$tree" "lines the board received from the flat file"
expect_eq "$(sed -n 7p "$work/flat.map" | tr -d '\r')" "7	$work/extra/MID.KVR	1" "map entry"

# Faults: exit status and last report line (or first message) per file.
while IFS='|' read -r name text expected; do
    printf "$text" > "$work/src/$name"
    out=$(kvr "$work/src/$name" 2>&1)
    status=$?
    out=$(tail -n 1 <<<"$out")
    expect_eq "$status:${out/$(short "$upper\/SRC\/$name")/@}" "$expected" "$name"
done <<'CASES'
BAD.KVR|: OK-WORD 1 ;\r\n: USES  OK-WORD  UNKNOWN-WORD ;\r\n: NEVER-SENT ;\r\n|1:@ - line 2: UNKNOWN-WORD ?  - undefined word
LONG.KVR|1 DROP\r\n%081d\r\n|1:@ - line 2: OVER 80 CHARACTERS
MISS.KVR|INCLUDE NOWHERE\r\n|1:HALTED COMPILE, FILE NOT FOUND: NOWHERE.KVR
BAD.TXT|1 DROP\r\n|3:KVR-PC for Windows: Extension not .KVR, can not compile
CASES
tail -n 1 <<<"$(kvr "$work/src/BAD.KVR" --json 2>/dev/null)" | grep -q '"event":"summary".*"exit":1.*"outcome":"board-error"' \
    || fail "json summary"

# Ctrl-C, or a shutdown's SIGTERM, halts a long compile as F2 does.
for i in $(seq 1 20000); do echo ": W$i $i ;"; done | crlf "$work/src/LONGRUN.KVR"
long_compile() {
    mark=$(wc -l < "$work/board.log")
    "$BIN/kvr" --settings-dir "$settings" compile "$work/src/LONGRUN.KVR" --quiet --remote "127.0.0.1:$port" \
        > "$work/halt.out" 2> "$work/err" &
    kvr_pid=$!
    for _ in $(seq 1 400); do
        [ "$(log | grep -c '^: W')" -gt 50 ] && break
        sleep 0.02
    done
}
for sig in INT TERM; do
    long_compile
    kill -$sig "$kvr_pid"
    wait "$kvr_pid"
    expect_eq "$?:$(tail -n 1 "$work/halt.out")" "4:HALTED COMPILE WITH F2" "halted by SIG$sig"
done

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
