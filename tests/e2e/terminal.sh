#!/usr/bin/env bash
# The terminal on the simulated board: keys typed into the interactive
# window reach the board, and its answer is painted; the capture file
# records what the screen showed.
source "$(dirname "$0")/lib.sh"

start_display
start_board
start_pc --simulator "127.0.0.1:$BOARD_PORT"

# The connect message of the TCP link.
connected=$(wait_window 20 '^KVR-PC for Windows$')
keys "$connected" Return
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 127.0.0.1 port [0-9]+ - connected$')

# Capture to file: the save dialog, then the confirmation.
capture="$E2E_DIR/session.cap"
keys "$frame" alt+f
sleep 0.3
keys "$frame" c
dialog=$(wait_window 10 '^Capture to file$')
sleep 0.3
xdotool key --delay 20 ctrl+a
xdotool type --delay 10 "$capture"
xdotool key Return
confirm=$(wait_window 10 '^KVR-PC for Windows$')
keys "$confirm" Return
wait_until 10 test -f "$capture" || fail "capture file not created"

# Type into the terminal (it has the focus after the dialogs) and wait for
# the board's answer in what the screen received.
xdotool windowactivate --sync "$frame" 2>/dev/null || true
xdotool type --delay 40 "2 3 + ."
xdotool key Return
wait_until 10 grep -q '2 3 + \. 5 ' "$capture" || fail "no answer 5 in the capture: $(cat -v "$capture")"
screenshot answer

# Stop capturing and decline to display it.
keys "$frame" alt+f
sleep 0.3
keys "$frame" c
question=$(wait_window 10 '^KVR-PC for Windows$')
keys "$question" Escape
grep -q ' ok' "$capture" || fail "no ok in the capture: $(cat -v "$capture")"

keys "$frame" alt+f
sleep 0.3
keys "$frame" x
wait_exit 10 "$PC_PID" || fail "kvr-pc did not exit"
echo "terminal: ok"
