#!/usr/bin/env bash
# kvr compile against the simulated board: nested INCLUDE files found in the
# source folder, an extra search path and the program folder, conditional
# blocks spanning files, an unknown word, the other faults, Ctrl-C, JSON.
set -u
BIN=${KVR_BIN_DIR:?}
work=$(mktemp -d)
board_pid=""
mute_pid=""
cleanup() {
    [ -n "$board_pid" ] && kill "$board_pid" 2>/dev/null && wait "$board_pid" 2>/dev/null
    [ -n "$mute_pid" ] && kill -CONT "$mute_pid" 2>/dev/null && kill "$mute_pid" 2>/dev/null && wait "$mute_pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
source "${KVR_SOURCE_DIR:?}/tests/e2e/cli_lib.sh"

start_main_board

board_settings

kvr() { "$BIN/kvr" --settings-dir "$settings" compile "$@" --remote "127.0.0.1:$port"; }

# --- a program of four files in three folders, with blocks across files
crlf "$work/src/Main.kvr" <<'SRC'
\ main program
#CONDITION FAST
INCLUDE io            \ in the source folder
#IF SLOW
: SPEED 1 ;
INCLUDE never
#ELSEIF FAST
: SPEED 9 ;
INCLUDE mid
: AFTER-MID  MID-WORD SPEED + ;
QUICK ON
: SQ   DUP  *   ;   \ compacted
QUICK OFF
AFTER-MID SQ IO-WORD + DROP
SRC
crlf "$work/src/NEVER.KVR" <<'SRC'
\ included although its INCLUDE sits in a skipped branch; its lines are skipped
NO-SUCH-WORD
SRC
crlf "$work/src/IO.KVR" <<'SRC'
: IO-WORD 3 ;
: IO-WORD 4 ;
SRC
crlf "$work/extra/MID.KVR" <<'SRC'
\ found along the extra search path; the block of Main ends here
: MID-WORD 5 ;
#ELSE
NO-SUCH-WORD
#ENDIF
INCLUDE proglib
INCLUDE io
SRC
crlf "$settings/program/PROGLIB.KVR" <<'SRC'
: PROG-WORD  IO-WORD 1+ ;
	\ a tab-indented comment goes to the board
SRC

out=$(kvr "$work/src/Main.kvr" 2> "$work/err")
status=$?
expect_eq "$status" 0 "finished program exit status"
upper=$(echo "$work" | tr a-z A-Z)
short() { local p="$1"; if [ ${#p} -gt 38 ]; then echo "...${p: -34}"; else echo "$p"; fi; }
main_short=$(short "$upper/SRC/MAIN.KVR")
expected="$main_short - line 3: FILE IO.KVR INCLUDED
$main_short - line 6: FILE NEVER.KVR INCLUDED
$main_short - line 9: FILE MID.KVR INCLUDED
$(short "$work/extra/MID.KVR") - line 6: FILE PROGLIB.KVR INCLUDED
$(short "$work/extra/MID.KVR") - line 7: FILE IO.KVR ALREADY COMPILED
$main_short - line 11: QUICK ON
$main_short - line 13: QUICK OFF"
expect_eq "$(echo "$out" | grep -v 'FINISHED at' | grep -v 'NOT UNIQUE')" "$expected" "report lines"
echo "$out" | grep -q "$(short "$upper/SRC/IO.KVR") - line 2: IO-WORD NOT UNIQUE" || fail "NOT UNIQUE warning missing: $out"
echo "$out" | tail -n 1 | grep -Eq "^$main_short - FINISHED at [0-9A-F]{1,4}$" || fail "no FINISHED at line: $out"
grep -q "NO-SUCH-WORD" "$work/board.log" && fail "a skipped branch reached the board"
grep -q "^: SQ DUP \* ;$" "$work/board.log" || fail "quick compile did not compact the line"
grep -qP "^\t\\\\ a tab-indented comment" "$work/board.log" || fail "tab-indented comment not sent"
grep -q "INCLUDE" "$work/board.log" && fail "an INCLUDE line reached the board"
[ -s "$work/err" ] && fail "unexpected messages: $(cat "$work/err")"

# --- on a terminal, stderr carries one progress line rewritten in place; none with --quiet
tty_stderr() { script -qec "$BIN/kvr --settings-dir $settings compile $work/src/Main.kvr --remote 127.0.0.1:$port $* 2>&1 >/dev/null" /dev/null; }
tty_stderr > "$work/tty"
grep -q $'\r'"MAIN.KVR line [0-9]* - [0-9]* of [0-9]* lines - 0:[0-9][0-9]" "$work/tty" \
    || fail "no progress line on a terminal: $(cat -v "$work/tty")"
tty_stderr --quiet > "$work/tty"
grep -q " lines - " "$work/tty" && fail "progress shown under --quiet: $(cat -v "$work/tty")"

# --- an unknown word stops the compile with the board's message
crlf "$work/src/BAD.KVR" <<'SRC'
: OK-WORD 1 ;
: USES  OK-WORD  UNKNOWN-WORD ;
: NEVER-SENT ;
SRC
out=$(kvr "$work/src/BAD.KVR" 2> "$work/err")
expect_eq "$?" 1 "unknown word exit status"
echo "$out" | tail -n 1 | grep -q "$(short "$upper/SRC/BAD.KVR") - line 2: UNKNOWN-WORD ?  - " \
    || fail "board error not reported: $out"
grep -q "NEVER-SENT" "$work/board.log" && fail "compile went on after the error"

# --- other faults
printf '%081d\r\n' 0 > "$work/src/LONG.KVR"
out=$(kvr "$work/src/LONG.KVR" 2>/dev/null)
expect_eq "$?" 1 "over-long line exit status"
echo "$out" | grep -q "line 1: OVER 80 CHARACTERS" || fail "over-long line not reported: $out"

printf 'INCLUDE NOWHERE\r\n' > "$work/src/MISS.KVR"
out=$(kvr "$work/src/MISS.KVR" 2> "$work/err")
expect_eq "$?" 1 "missing include exit status"
expect_eq "$(echo "$out" | tail -n 1)" "HALTED COMPILE, FILE NOT FOUND: NOWHERE.KVR" "missing include report"
grep -q "Can't open file NOWHERE.KVR" "$work/err" || fail "no message on stderr: $(cat "$work/err")"

printf '#ENDIF\r\n' > "$work/src/COND.KVR"
kvr "$work/src/COND.KVR" > /dev/null 2>&1
expect_eq "$?" 1 "conditional error exit status"

cp "$work/src/BAD.KVR" "$work/src/BAD.TXT"
kvr "$work/src/BAD.TXT" > /dev/null 2> "$work/err"
expect_eq "$?" 3 "wrong extension exit status"
grep -q "Extension not .KVR, can not compile" "$work/err" || fail "extension message missing"

"$BIN/kvr" --settings-dir "$settings" compile "$work/src/Main.kvr" --remote 127.0.0.1:1 > /dev/null 2>&1
expect_eq "$?" 2 "refused connection exit status"
"$BIN/kvr" --settings-dir "$settings" compile > /dev/null 2>&1
expect_eq "$?" 3 "usage exit status"
kvr "$work/src/Main.kvr" --type 9999 > /dev/null 2>&1
expect_eq "$?" 3 "bad type exit status"

# --- JSON for CI: files as they are on disk, lines from 1
out=$(kvr "$work/src/BAD.KVR" --json --yes 2>/dev/null)
echo "$out" | grep -qF "\"file\":\"$work/src/BAD.KVR\",\"kind\":\"board-error\",\"line\":2," \
    || fail "json board error: $out"
echo "$out" | tail -n 1 | grep -q '"event":"summary".*"exit":1.*"lines_sent":2.*"outcome":"board-error"' \
    || fail "json summary: $out"
out=$(kvr "$work/src/MISS.KVR" --json 2>/dev/null)
echo "$out" | grep -qF "\"file\":\"$work/src/MISS.KVR\",\"kind\":\"file-not-found\",\"line\":1," \
    || fail "json missing include: $out"

# --- Ctrl-C, or a shutdown's SIGTERM, halts a long compile as F2 does
for i in $(seq 1 20000); do echo ": W$i $i ;"; done | crlf "$work/src/LONGRUN.KVR"
for sig in INT TERM; do
    before=$(grep -c '^: W' "$work/board.log" || true)
    "$BIN/kvr" --settings-dir "$settings" compile "$work/src/LONGRUN.KVR" --quiet --remote "127.0.0.1:$port" \
        > "$work/halt.out" 2> "$work/err" &
    kvr_pid=$!
    for _ in $(seq 1 400); do
        [ "$(grep -c '^: W' "$work/board.log")" -gt $((before + 50)) ] && break
        sleep 0.02
    done
    kill -$sig "$kvr_pid"
    wait "$kvr_pid"
    expect_eq "$?" 4 "halted exit status (SIG$sig)"
    expect_eq "$(tail -n 1 "$work/halt.out")" "HALTED COMPILE WITH F2" "halt report (SIG$sig)"
    grep -q "^: W20000 " "$work/board.log" && fail "SIG$sig did not stop the compile"
done

# --- a fresh settings folder: the delay is measured for the run, not saved
fresh="$work/fresh"
printf ': TINY 1 ;\r\n' > "$work/src/TINY.KVR"
out=$("$BIN/kvr" --settings-dir "$fresh" compile "$work/src/TINY.KVR" --type 4410ANS --json \
    --remote "127.0.0.1:$port" 2> "$work/err")
expect_eq "$?" 0 "fresh settings exit status"
echo "$out" | tail -n 1 | grep -Eq '"delay":[1-9][0-9]*[,}]' || fail "delay not measured: $out"
[ -e "$fresh/KVR-PC.INI" ] && fail "a fresh settings file was written"
out=$(kvr "$work/src/TINY.KVR" --json 2>/dev/null)
echo "$out" | tail -n 1 | grep -q '"delay":0[,}]' || fail "a set delay was not kept: $out"
"$BIN/kvr" --help | grep -q 'delay still "-1"' || fail "kvr --help does not explain the delay"

# --- continue after a fix: a program of three files stops in its second INCLUDE
# file; once the line is fixed on disk the compile goes on from the failing
# definition, sending nothing twice that came before it.
spawn_board cont
cont_pid=$spawned_pid
cont_port=$spawned_port
mkdir -p "$work/cont"
crlf "$work/cont/PROG.KVR" <<'SRC'
: P1 1 ;
INCLUDE first
INCLUDE second
: TOTAL  P1 F1 + S1 + S2 + ;
: CHECK  TOTAL 313 <> ABORT" wrong total" ;
CHECK
SRC
crlf "$work/cont/FIRST.KVR" <<'SRC'
: F1 10 ;
SRC
crlf "$work/cont/SECOND.KVR" <<'SRC'
: S1 100 ;
: S2
  S1 NOT-YET-WRITTEN
  DUP + ;
SRC
ckvr() { "$BIN/kvr" --settings-dir "$settings" compile "$work/cont/PROG.KVR" --remote "127.0.0.1:$cont_port" "$@"; }
times_sent() { grep -c -x -F -- "$1" "$work/cont.log"; }
out=$(ckvr 2> "$work/err")
expect_eq "$?" 1 "continue: the first run stops on the board error"
echo "$out" | tail -n 1 | grep -q "SECOND.KVR - line 3: NOT-YET-WRITTEN ?  - " || fail "continue: first run: $out"
sed -i 's/NOT-YET-WRITTEN/1+/' "$work/cont/SECOND.KVR"
out=$(ckvr --continue 2> "$work/err")
expect_eq "$?" 0 "continue: the fixed program finishes, CHECK included"
echo "$out" | head -n 1 | grep -q "^CONTINUED at .*SECOND.KVR line 2$" || fail "continue: no resume line: $out"
for line in ": P1 1 ;" ": F1 10 ;" ": S1 100 ;"; do
    expect_eq "$(times_sent "$line")" 1 "continue: '$line' sent once"
done
expect_eq "$(times_sent ": S2")" 2 "continue: the failing definition sent again from its first line"
expect_eq "$(times_sent "  S1 1+")" 1 "continue: the fixed line"
expect_eq "$(times_sent "CHECK")" 1 "continue: the check of every file's words"
# A change before the failing line is named, and a full compile needs --yes.
sed -i 's/1+/NOT-YET-WRITTEN/' "$work/cont/SECOND.KVR"
ckvr > /dev/null 2>&1
expect_eq "$?" 1 "continue: stopped again"
sed -i 's/NOT-YET-WRITTEN/1+/' "$work/cont/SECOND.KVR"
sed -i 's/: F1 10 ;/: F1  10 ;/' "$work/cont/FIRST.KVR"
before=$(wc -l < "$work/cont.log")
ckvr --continue > /dev/null 2> "$work/err"
expect_eq "$?" 3 "continue refused after an earlier change"
grep -q "FIRST.KVR line 1 has changed" "$work/err" || fail "continue: change not named: $(cat "$work/err")"
expect_eq "$(wc -l < "$work/cont.log")" "$before" "continue: nothing sent when refused"
ckvr --continue --yes > "$work/out" 2> "$work/err"
expect_eq "$?" 0 "continue --yes compiles from the start"
grep -q "CONTINUED" "$work/out" && fail "continue --yes: $(cat "$work/out")"
expect_eq "$(times_sent ": F1  10 ;")" 1 "continue --yes sent the whole program"
kill "$cont_pid"; wait "$cont_pid" 2>/dev/null

# --- the board goes away in the middle of a compile
spawn_board gone
gone_pid=$spawned_pid
gone_port=$spawned_port
"$BIN/kvr" --settings-dir "$settings" compile "$work/src/LONGRUN.KVR" --quiet --remote "127.0.0.1:$gone_port" \
    > "$work/gone.report" 2> "$work/err" &
kvr_pid=$!
for _ in $(seq 1 400); do
    [ "$(grep -c '^: W' "$work/gone.log" 2>/dev/null)" -gt 50 ] && break
    sleep 0.02
done
kill "$gone_pid"; wait "$gone_pid" 2>/dev/null
wait "$kvr_pid"
expect_eq "$?" 2 "board gone exit status"
expect_eq "$(tail -n 1 "$work/gone.report")" "KVR4410 NOT RESPONDING" "board gone report"

# --- a board that never answers (stopped: the system still accepts the
# connection): no end address is no normal end, and Ctrl-C ends the wait at
# once, whatever the time-out
spawn_board mute
mute_pid=$spawned_pid
mute_port=$spawned_port
kill -STOP "$mute_pid"
: > "$work/src/EMPTY.KVR"
out=$("$BIN/kvr" --settings-dir "$settings" compile "$work/src/EMPTY.KVR" --json --remote "127.0.0.1:$mute_port" \
    2>/dev/null)
expect_eq "$?" 2 "unconfirmed end address exit status"
echo "$out" | tail -n 1 | grep -q '"outcome":"end-address-unconfirmed"' || fail "json unconfirmed end: $out"
mkdir -p "$work/patient"
sed 's/^Timeout=.*/Timeout=60000\r/' "$settings/KVR-PC.INI" > "$work/patient/KVR-PC.INI"
printf 'INCLUDE io\r\n' > "$work/src/MUTE.KVR"
"$BIN/kvr" --settings-dir "$work/patient" compile "$work/src/MUTE.KVR" --remote "127.0.0.1:$mute_port" \
    > "$work/mute.report" 2> "$work/err" &
kvr_pid=$!
for _ in $(seq 1 400); do
    grep -q "INCLUDED" "$work/mute.report" && break
    sleep 0.02
done
kill -INT "$kvr_pid"
wait "$kvr_pid"
expect_eq "$?" 4 "silent board halted exit status"
expect_eq "$(tail -n 1 "$work/mute.report")" "HALTED COMPILE WITH F2" "silent board halt report"
[ -s "$work/err" ] && fail "the halt waited for the silent board: $(cat "$work/err")"

# --- the same program over a serial port (a pseudo-terminal board)
"$BIN/kvr-board" --pty --link "$work/ttyKVR" > "$work/pty.out" 2> "$work/pty.err" &
pty_pid=$!
for _ in $(seq 1 200); do
    [ -e "$work/ttyKVR" ] && grep -q '^pty ' "$work/pty.out" && break
    sleep 0.05
done
printf '\r\n[Serial devices]\r\nCOM5=%s\r\n' "$work/ttyKVR" >> "$settings/KVR-PC.INI"
out=$("$BIN/kvr" --settings-dir "$settings" compile "$work/src/Main.kvr" --port COM5 2> "$work/err")
expect_eq "$?" 0 "serial compile exit status"
echo "$out" | tail -n 1 | grep -Eq "^$main_short - FINISHED at [0-9A-F]{1,4}$" || fail "serial: $out $(cat "$work/err")"
kill "$pty_pid"; wait "$pty_pid" 2>/dev/null
"$BIN/kvr" --settings-dir "$settings" compile "$work/src/Main.kvr" --port COM5 > /dev/null 2>&1
expect_eq "$?" 2 "vanished serial port exit status"

# The settings file is never changed by the command line.
grep -q "Quick compile" "$settings/KVR-PC.INI" && fail "settings were written"

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
