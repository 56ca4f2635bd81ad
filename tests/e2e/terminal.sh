#!/usr/bin/env bash
# The terminal on the simulated board, over TCP and over a serial port (the
# board's pseudo-terminal): keys typed into the interactive window reach the
# board, and its answer is painted; the capture file records what arrived.
source "$(dirname "$0")/lib.sh"

# capture_answer FRAME NAME: starts a capture, types "2 3 + ." and Enter in
# the terminal, waits for the answer 5 in the capture, takes a screenshot
# and stops the capture without displaying it.
capture_answer() {
    local frame=$1 name=$2
    local capture="$E2E_DIR/$name.cap"
    # The start-up editor window has the keys and Alt+F would open its own
    # File menu: bring the terminal forward first, as a user would.
    keys "$frame" alt+w i
    # The menu opens on Alt+F before the item's letter is handled.
    keys "$frame" alt+f c
    local dialog
    dialog=$(wait_window 10 '^Capture to file$')
    xdotool windowactivate --sync "$dialog" 2>/dev/null || true
    xdotool key --clearmodifiers --delay 20 ctrl+a
    xdotool type --clearmodifiers --delay 10 "$capture"
    xdotool key Return
    keys "$(wait_window 10 '^KVR-PC for Windows$')" Return
    wait_until 10 test -f "$capture" || fail "$name: capture file not created"

    # The terminal has the focus again after the dialogs.
    xdotool windowactivate --sync "$frame" 2>/dev/null || true
    xdotool type --clearmodifiers --delay 40 "2 3 + ."
    xdotool key Return
    wait_until 10 grep -q '2 3 + \. 5  ok' "$capture" \
        || fail "$name: no answer 5 in the capture: $(cat -v "$capture")"
    screenshot "$name"

    keys "$frame" alt+f c
    keys "$(wait_window 10 '^KVR-PC for Windows$')" Escape
}

exit_pc() {
    keys "$1" alt+f x
    wait_exit 10 "$PC_PID" || fail "kvr-pc did not exit"
}

start_display

# Over TCP, to the board given for this run.
start_board
start_pc --simulator "127.0.0.1:$BOARD_PORT"
keys "$(wait_window 20 '^KVR-PC for Windows$')" Return   # "Connected to IP address ..."
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 127.0.0.1 port [0-9]+ - connected$')
capture_answer "$frame" tcp
exit_pc "$frame"

# Over a serial port: COM5 bound to the board's pseudo-terminal.
"$KVR_BIN_DIR/kvr-board" --pty >"$E2E_DIR/pty.out" 2>"$E2E_DIR/pty.err" &
pty_board=$!
E2E_PIDS+=($pty_board)
wait_until 10 grep -q '^pty ' "$E2E_DIR/pty.out" || fail "kvr-board --pty did not start"
pty=$(sed -n 's/^pty //p' "$E2E_DIR/pty.out")
SETTINGS_DIR="$E2E_DIR/serial-settings"
mkdir -p "$SETTINGS_DIR"
printf '[Parameters]\r\nCommunications port=COM5\r\nOpening dialogue=OFF\r\nIntercharacter delay - KVR4410=0\r\nIntercharacter delay - KVR6630=0\r\n[Serial devices]\r\nCOM5=%s\r\n' \
    "$pty" >"$SETTINGS_DIR/KVR-PC.INI"
start_pc
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM5$')
capture_answer "$frame" serial
exit_pc "$frame"

# A board that does not answer (its bridge stopped): the frame is painted
# while the start-up line waits out the reply time-out.
kill -STOP "$pty_board"
trap 'kill -CONT "$pty_board" 2>/dev/null; e2e_cleanup' EXIT
printf '[Parameters]\r\nCommunications port=COM5\r\nOpening dialogue=OFF\r\nTimeout=8000\r\nIntercharacter delay - KVR4410=0\r\n[Serial devices]\r\nCOM5=%s\r\n' \
    "$pty" >"$SETTINGS_DIR/KVR-PC.INI"
start_pc
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM5$')
painted() {
    import -window "$frame" "$E2E_DIR/silent.png" 2>/dev/null || return 1
    [ "$(convert "$E2E_DIR/silent.png" -format %k info:)" -gt 16 ]
}
wait_until 5 painted || fail "frame not painted while the board is silent"
has_window '^KVR-PC for Windows$' && fail "the time-out ran out before the frame was painted"
screenshot silent-board
keys "$(wait_window 20 '^KVR-PC for Windows$')" Return   # "KVR4410ANS NOT RESPONDING. ..."
exit_pc "$frame"

# Closing the frame while the start-up line waits ends the wait and the
# program at once, as Exit does.
start_pc
frame=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM5$')
wait_until 5 painted || fail "frame not painted while the board is silent"
xdotool windowactivate --sync "$frame" 2>/dev/null || true
xdotool key alt+F4
wait_exit 2 "$PC_PID" || fail "kvr-pc did not end within 2 s of closing its frame during a wait"
[ ! -e "$SETTINGS_DIR/kvr-pc.lck" ] || fail "the lock file was left behind"
kill -CONT "$pty_board"
echo "terminal: ok"
