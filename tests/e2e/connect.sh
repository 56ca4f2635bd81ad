#!/usr/bin/env bash
# Start and connect: a first start on a fresh configuration and its lock;
# a serial board (the board's pseudo-terminal) that does not answer at
# start-up, then answers in the terminal, stops mid-compile and comes back;
# kvr-pc ended by a signal; a TCP board restarted on its port.
source "$(dirname "$0")/lib.sh"

start_display
lock="$SETTINGS_DIR/kvr-pc.lck"
caption() { xdotool getwindowname "$FRAME" 2>/dev/null; }
boxes() { xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null | wc -l; }
caption_says() { want=$2; wait_until "$1" eval 'caption | grep -q -- "$want"' || fail "caption not /$2/: $(caption)"; }
# lose_board WHAT: the board ends; the caption says so and one message does.
lose_board() {
    kill -TERM "$BOARD_PID" && wait "$BOARD_PID" 2>/dev/null
    caption_says 2 'link down: '
    wait_until 2 eval '[ "$(boxes)" -ge 1 ]' || fail "no message $1"
    [ "$(boxes)" -eq 1 ] || fail "$(boxes) message boxes $1"
    keys "$(window_id '^KVR-PC for Windows$')" Return
}
# typed TEXT: typed into the terminal, it reaches the board's log.
typed() {
    keys "$FRAME" alt+w i
    type_text "$FRAME" "$1"
    xdotool key Return
    wait_until 5 grep -qF "$1" "$log" || fail "'$1' did not reach the board"
}

# --- First start: caption, settings file, lock, opening dialogue; a second
# start asks the lock question and OK ends it; Exit removes the lock.
start_pc
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM1$')
first=$PC_PID
wait_until 5 grep -q $'^KVR-PC version=3.20\r$' "$SETTINGS_DIR/KVR-PC.INI" || fail "no settings file of version 3.20"
test -f "$lock" || fail "no lock file"
# Without a usable /dev/ttyS0 the terminal first says COM1 could not open.
wait_until 20 eval 'has_window "^Welcome to KVR-PC for Windows$" || { answer_boxes; false; }' \
    || fail "no opening dialogue; windows: $(visible_windows)"
keys "$(window_id '^Welcome to KVR-PC for Windows$')" Escape
start_pc
keys "$(wait_window 20 '^KVR-PC for Windows$')" Return
wait_exit 10 "$PC_PID" || fail "second copy did not end after OK"
test -f "$lock" || fail "lock file removed by the second copy"
keys "$FRAME" alt+f x
wait_exit 10 "$first" || fail "kvr-pc did not exit"
test ! -f "$lock" || fail "lock file left behind"

# --- Serial: COM9 is the board's pseudo-terminal behind a fixed name.
device="$E2E_DIR/ttyKVR9"
log="$E2E_DIR/board.log"
pty_board() {
    rm -f "$device"
    "$KVR_BIN_DIR/kvr-board" --pty --link "$device" --log "$log" --baud 9600 >"$E2E_DIR/pty.out" 2>&1 &
    BOARD_PID=$!
    E2E_PIDS+=($BOARD_PID)
    wait_until 10 test -e "$device" || fail "kvr-board --pty did not start: $(cat "$E2E_DIR/pty.out")"
}
write_settings <<INI
Communications port=COM9
[Serial devices]
COM9=$device
INI
sed -i 's/^Timeout=3000/Timeout=8000/' "$SETTINGS_DIR/KVR-PC.INI"
# A board that does not answer: the frame is painted while the start-up
# line waits, and closing it ends the wait and the program at once.
pty_board
kill -STOP "$BOARD_PID"
trap 'kill -CONT "$BOARD_PID" 2>/dev/null; e2e_cleanup' EXIT
start_pc
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM9$')
painted() {
    import -window "$FRAME" "$E2E_DIR/silent.png" 2>/dev/null || return 1
    [ "$(convert "$E2E_DIR/silent.png" -format %k info:)" -gt 16 ]
}
wait_until 5 painted || fail "frame not painted while the board is silent"
[ "$(boxes)" -eq 0 ] || fail "the time-out ran out before the frame was painted"
xdotool windowactivate --sync "$FRAME" 2>/dev/null || true
xdotool key alt+F4
wait_exit 2 "$PC_PID" || fail "kvr-pc did not end within 2 s of closing its frame during a wait"
[ ! -e "$lock" ] || fail "the lock file was left behind"
kill -CONT "$BOARD_PID"

for i in $(seq 1 5000); do printf ': L%d 1 ;\r\n' "$i"; done >"$E2E_DIR/LONG.KVR"
start_pc "$E2E_DIR/LONG.KVR"
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM9$')
wait_until 10 grep -q 'HRS W! START' "$log" || fail "board not greeted"

# The answer to a typed line is painted: the capture file records it.
capture="$E2E_DIR/serial.cap"
keys "$FRAME" alt+w i
keys "$FRAME" alt+f c
xdotool windowactivate --sync "$(wait_window 10 '^Capture to file$')" 2>/dev/null || true
xdotool key --clearmodifiers ctrl+a && xdotool type --clearmodifiers --delay 10 "$capture" && xdotool key Return
keys "$(wait_window 10 '^KVR-PC for Windows$')" Return
typed "2 3 + ."
wait_until 5 grep -q '2 3 + \. 5  ok' "$capture" || fail "no answer in the capture: $(cat -v "$capture")"
keys "$FRAME" alt+f c
keys "$(wait_window 10 '^KVR-PC for Windows$')" Escape

# The board stops in the middle of a compile: one message, then it comes
# back on the same device by itself.
keys "$FRAME" alt+w i
keys "$FRAME" Tab F8
wait_until 20 eval '[ "$(grep -c "^: L" "$log")" -gt 50 ]' || fail "compile did not start"
lose_board "for one lost link"
pty_board
caption_says 3 ' - COM9$'
[ "$(boxes)" -eq 0 ] || fail "a second message after the first"
typed "3 4 + ."

# SIGTERM ends it as Exit does; unsaved text goes to a numbered backup.
xdotool mousemove --window "$FRAME" 300 250 click 1   # into the editor
type_text "$FRAME" ": KEPT 1 ;"
kill -TERM "$PC_PID"
wait_exit 10 "$PC_PID" || fail "kvr-pc ignored SIGTERM"
[ ! -e "$lock" ] || fail "SIGTERM left the lock file"
grep -qs ": KEPT 1 ;" "$E2E_DIR"/LONG.001.KVR "$SETTINGS_DIR"/program/UNTITLED.001.KVR || fail "unsaved text not kept: $(cd "$E2E_DIR" && find . -name "*.KVR" | grep -v LONG.KVR)"

# --- TCP: greeted once; the board restarted on its port is found again.
log="$E2E_DIR/tcp.log"
start_board --log "$log"
start_pc --simulator "127.0.0.1:$BOARD_PORT"
# "Connected to IP address ..." and the note on the text kept at SIGTERM.
wait_until 20 eval 'grep -q "HRS W! START" "$log" || { answer_boxes; false; }' || fail "TCP board not greeted"
FRAME=$(wait_window 20 "^KVR-PC for Windows - .* port $BOARD_PORT - connected$")
typed "5 6 + ."
[ "$(grep -c 'HRS W! START' "$log")" -eq 1 ] || fail "the TCP board was greeted more than once"
[ "$(boxes)" -eq 0 ] || fail "a message after the greeting"
lose_board "for one lost connection"
start_board --log "$log" --port "$BOARD_PORT"
caption_says 3 ' - connected$'
[ "$(boxes)" -eq 0 ] || fail "reconnecting asked something"
typed "7 8 + ."
kill -TERM "$PC_PID"
wait_exit 10 "$PC_PID" || fail "kvr-pc ignored SIGTERM"
echo "connect: ok"
