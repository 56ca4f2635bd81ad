#!/usr/bin/env bash
# kvr compile against each board type: programs in the board's own dialect
# reach "FINISHED at", a program in another board's dialect stops at its
# first foreign word with that board's error line, and a dictionary that
# runs full is a board error the compile reports.
set -u
BIN=${KVR_BIN_DIR:?}
work=$(mktemp -d)
source "${KVR_SOURCE_DIR:?}/tests/e2e/cli_lib.sh"
board_pid=""
trap '[ -n "$board_pid" ] && kill "$board_pid" 2>/dev/null; rm -rf "$work"' EXIT
board_settings
cp "$KVR_SOURCE_DIR"/examples/*.KVR "$work/src/"
# Ten thousand bytes a line: a realistic program never gets this far.
for i in $(seq 1 30); do echo "CREATE BLOCK$i 10000 ALLOT"; done | crlf "$work/src/HUGE.KVR"

# type | file | exit status | the report's last line matches
run=0
while IFS='|' read -r type file status ending; do
    run=$((run + 1))
    spawn_board "board$run" --type "$type"
    board_pid=$spawned_pid
    [ -n "$spawned_port" ] || { fail "no $type board: $(cat "$work/board$run.err")"; continue; }
    out=$("$BIN/kvr" --settings-dir "$settings" compile "$work/src/$file" --type "$type" \
        --remote "127.0.0.1:$spawned_port" 2>/dev/null)
    expect_eq "$?" "$status" "$file on $type"
    last=$(echo "$out" | tail -n 1)
    [[ "$last" =~ $ending ]] || fail "$file on $type ended with: $last"
    kill "$board_pid" && wait "$board_pid" 2>/dev/null
    board_pid=""
done <<'TABLE'
4410Fig|FIGLIST.KVR|0|FIGLIST.KVR - FINISHED at 2E[0-9A-F]{2}$
6630Fig|FIGLIST.KVR|0|FIGLIST.KVR - FINISHED at B4[0-9A-F]{2}$
4410ANS|SQUARES.KVR|0|SQUARES.KVR - FINISHED at 3C[0-9A-F]{2}$
4410Fig|SQUARES.KVR|1|SQUARES.KVR - line 11: \?DO \?  - NOT FOUND$
6630Fig|SQUARES.KVR|1|SQUARES.KVR - line 11: \?DO \?  - NOT FOUND$
4410ANS|FIGLIST.KVR|1|FIGLIST.KVR - line 12: <BUILDS \?  - undefined word$
4410Fig|HUGE.KVR|1|HUGE.KVR - line [0-9]+: ALLOT \?  - DICTIONARY FULL$
6630Fig|HUGE.KVR|1|HUGE.KVR - line [0-9]+: ALLOT \?  - DICTIONARY FULL$
4410ANS|HUGE.KVR|1|HUGE.KVR - line [0-9]+: ALLOT \?  - dictionary overflow$
TABLE

exit "$failures"
