#!/usr/bin/env bash
# First start on a fresh configuration: caption, complete settings file,
# lock file and the lock question of a second start, clean exit.
source "$(dirname "$0")/lib.sh"

start_display
start_pc
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM1$')
ini="$SETTINGS_DIR/KVR-PC.INI"
wait_until 5 test -f "$ini" || fail "no settings file"
grep -q $'^KVR-PC version=3.20\r$' "$ini" || fail "version not 3.20: $(head -3 "$ini")"
params=$(sed -n '/^\[Parameters\]/,/^\[/p' "$ini" | grep -c '=')
colors=$(sed -n '/^\[Colors\]/,/^\[/p' "$ini" | grep -c '=')
[ "$params" -eq 24 ] || fail "Parameters has $params keys"
[ "$colors" -eq 18 ] || fail "Colors has $colors keys"
test -f "$SETTINGS_DIR/kvr-pc.lck" || fail "no lock file"

# The opening dialogue of a first start; on a machine without a usable
# /dev/ttyS0 the terminal first reports that COM1 could not be opened.
deadline=$((SECONDS + 20))
until has_window '^Welcome to KVR-PC for Windows$'; do
    [ $SECONDS -lt $deadline ] || fail "no opening dialogue; windows: $(visible_windows)"
    box=$(window_id '^KVR-PC for Windows$')
    [ -n "$box" ] && keys "$box" Return
    sleep 0.2
done
dialogue=$(window_id '^Welcome to KVR-PC for Windows$')
screenshot opening
keys "$dialogue" Escape

# A second start asks the lock question; OK ends it and keeps the lock.
first=$PC_PID
start_pc
second=$PC_PID
question=$(wait_window 20 '^KVR-PC for Windows$')
screenshot lock-question
keys "$question" Return
wait_exit 10 "$second" || fail "second copy did not end after OK"
test -f "$SETTINGS_DIR/kvr-pc.lck" || fail "lock file removed by the second copy"

# Exit through the File menu removes the lock file.
keys "$frame" alt+f
sleep 0.3
keys "$frame" x
wait_exit 10 "$first" || fail "kvr-pc did not exit"
test ! -f "$SETTINGS_DIR/kvr-pc.lck" || fail "lock file left behind"

# A saved TCP link with the opening dialogue off: the board is greeted once
# the connection is up, exactly once.
start_board --log "$E2E_DIR/board.log"
SETTINGS_DIR="$E2E_DIR/tcp-settings"
mkdir -p "$SETTINGS_DIR"
printf '[Parameters]\r\nCommunications port=COM0\r\nOpening dialogue=OFF\r\nRemote KVR computer IP address=127.0.0.1\r\nRemote KVR computer IP port=%s\r\nIntercharacter delay - KVR4410=0\r\n' \
    "$BOARD_PORT" >"$SETTINGS_DIR/KVR-PC.INI"
start_pc
answer_boxes() {
    local wid
    for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
        keys "$wid" Return || true
    done
    grep -q 'HRS W! START' "$E2E_DIR/board.log"
}
wait_until 20 answer_boxes || fail "the start-up line never reached the board over TCP"
sleep 1
[ "$(grep -c 'HRS W! START' "$E2E_DIR/board.log")" -eq 1 ] || fail "the board was greeted more than once"
echo "startup: ok"
