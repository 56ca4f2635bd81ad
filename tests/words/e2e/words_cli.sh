#!/usr/bin/env bash
# kvr words: the database, the suggestions report, the statistics on
# stdout and the alphanumeric report; the exit statuses of its failures.
set -u
BIN=${KVR_BIN_DIR:?}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "${KVR_SOURCE_DIR:?}/tests/e2e/cli_lib.sh"
words() { "$BIN/kvr" --settings-dir "$work/settings" words "$@"; }

mkdir -p "$work/src"
printf 'INCLUDE lib\r\n: MAIN  5 SQUARE  OVER OVER + ;\r\n' >"$work/src/App.kvr"
printf ': SQUARE DUP * ;\r\n: UNUSED-WORD ;\r\n' >"$work/src/LIB.KVR"
words "$work/src/App.kvr" --suggest --report "$work/defs.txt" >"$work/out" 2>"$work/err"
expect_eq "$?" 0 "exit status"
[ -f "$work/src/APP.MDB" ] || fail "no database: $(ls "$work/src")"
grep -q "^User defined words        used:   1$" "$work/out" || fail "statistics: $(cat "$work/out")"
grep -q "^UNUSED-WORD  *.*/LIB.KVR$" "$work/out" || fail "unreferenced list: $(cat "$work/out")"
grep -q "Do you want to have the suggestions?" "$work/err" || fail "questions not shown: $(cat "$work/err")"
grep -q "^: MAIN 5 SQUARE 2DUP + ;"$'\r'"$" "$work/src/APP.SUG" || fail "no suggestion: $(cat "$work/src/APP.SUG")"
grep -q "^SQUARE  *File .*LIB.KVR  *1 reference"$'\r'"$" "$work/defs.txt" || fail "report: $(cat "$work/defs.txt")"
grep -q "^REPORT ON " "$work/defs.txt" || fail "suggestions not appended to the report"
# Without --suggest no report is written, and the settings file stays as it was.
rm "$work/src/APP.SUG"
words "$work/src/App.kvr" --type 6630fig >/dev/null 2>&1
expect_eq "$?" 0 "fig exit status"
[ -e "$work/src/APP.SUG" ] && fail "a report without --suggest"
[ -e "$work/settings/KVR-PC.INI" ] && fail "settings were written"

printf 'INCLUDE NOWHERE\r\n' >"$work/src/MISS.KVR"
words "$work/src/MISS.KVR" >/dev/null 2>"$work/err"
expect_eq "$?" 1 "missing include status"
grep -q "Can't open file NOWHERE.KVR" "$work/err" || fail "no message: $(cat "$work/err")"
printf 'broken' >"$work/settings/program/KVR6630/W6630Fig.MDB"
words "$work/src/App.kvr" --type 6630Fig >/dev/null 2>"$work/err"
expect_eq "$?" 1 "faulty template status"
words "$work/src/App.kvr" --type 9999 >/dev/null 2>&1
expect_eq "$?" 3 "bad type status"
cp "$work/src/LIB.KVR" "$work/src/LIB.TXT"
words "$work/src/LIB.TXT" >/dev/null 2>&1
expect_eq "$?" 3 "wrong extension status"

# Ctrl-C stops a long build; what was read stays in the database.
awk 'BEGIN { for (i = 1; i <= 400000; i++) printf ": W%d %d ;\r\n", i, i }' >"$work/src/BIG.KVR"
"$BIN/kvr" --settings-dir "$work/settings" words "$work/src/BIG.KVR" >/dev/null 2>&1 &
pid=$!
for _ in $(seq 1 400); do [ -s "$work/src/BIG.MDB" ] && break; sleep 0.02; done
kill -INT "$pid"
wait "$pid"
expect_eq "$?" 4 "halted status"

[ "$failures" -eq 0 ] && echo "PASS" || exit 1
