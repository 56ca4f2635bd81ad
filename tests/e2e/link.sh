#!/usr/bin/env bash
# The link as it fails in daily use: a serial board that stops in the middle
# of a compile and comes back on the same device, a TCP board restarted on
# its port, and kvr-pc itself ended by a signal.
source "$(dirname "$0")/lib.sh"

start_display
mkdir -p "$SETTINGS_DIR"
device="$E2E_DIR/ttyKVR9"
log="$E2E_DIR/board.log"

# pty_board: a serial board behind the same device name each time.
pty_board() {
    "$KVR_BIN_DIR/kvr-board" --pty --link "$device" --log "$log" --baud 9600 >"$E2E_DIR/pty.out" 2>"$E2E_DIR/pty.err" &
    BOARD_PID=$!
    E2E_PIDS+=($BOARD_PID)
    wait_until 10 test -e "$device" || fail "kvr-board --pty did not start: $(cat "$E2E_DIR/pty.err")"
}
stop_board() {
    kill -TERM "$BOARD_PID"
    wait "$BOARD_PID" 2>/dev/null || true
}
caption() { xdotool getwindowname "$FRAME" 2>/dev/null; }
# boxes: how many message boxes (titled as the program) are up.
boxes() { xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null | wc -l; }
# A typed line reaches the board's log.
typed_line_arrives() {
    local text=$1 seconds=$2
    keys "$FRAME" alt+w i
    type_text "$FRAME" "$text"
    xdotool key Return
    wait_until "$seconds" grep -qF "$text" "$log"
}

printf '[Parameters]\r\nCommunications port=COM9\r\nOpening dialogue=OFF\r\nIntercharacter delay - KVR4410=0\r\nTimeout=3000\r\n[Serial devices]\r\nCOM9=%s\r\n' \
    "$device" >"$SETTINGS_DIR/KVR-PC.INI"
# Long enough to be mid-way when the board stops, short enough for a window.
for i in $(seq 1 5000); do printf ': L%d 1 ;\r\n' "$i"; done >"$E2E_DIR/LONG.KVR"

# --- serial: the board stops during a compile, then comes back
pty_board
start_pc "$E2E_DIR/LONG.KVR"
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM9$')
wait_until 10 grep -q START "$log" || fail "board not greeted"
sleep 1
keys "$FRAME" Tab F8
wait_until 20 eval '[ "$(grep -c "^: L" "$log")" -gt 50 ]' || fail "compile did not start"
stop_board
wait_until 2 eval 'caption | grep -q "link down: "' || fail "caption does not say the link is down: $(caption)"
wait_until 2 eval '[ "$(boxes)" -ge 1 ]' || fail "no message about the lost link"
sleep 1
[ "$(boxes)" -eq 1 ] || fail "$(boxes) message boxes for one lost link"
screenshot serial-lost
keys "$(window_id '^KVR-PC for Windows$')" Return
sleep 1
[ "$(boxes)" -eq 0 ] || fail "a second message after the first"

pty_board
wait_until 3 eval 'caption | grep -qv "link down"' || fail "the link did not come back: $(caption)"
typed_line_arrives "2 3 + ." 3 || fail "a typed line did not reach the board after it came back"
screenshot serial-back
exit_ok() { keys "$FRAME" alt+f x; wait_exit 10 "$PC_PID" || fail "kvr-pc did not exit"; }

# --- SIGTERM ends it as Exit does: no lock left, the next start asks nothing
kill -TERM "$PC_PID"
wait_exit 10 "$PC_PID" || fail "kvr-pc ignored SIGTERM"
[ ! -e "$SETTINGS_DIR/kvr-pc.lck" ] || fail "SIGTERM left the lock file"
start_pc
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM9$')
sleep 2
[ "$(boxes)" -eq 0 ] || fail "the start after SIGTERM asked something"

# Unsaved text at SIGTERM goes to a numbered backup, said at the next start.
keys "$FRAME" Tab
type_text "$FRAME" ": KEPT 1 ;"
kill -TERM "$PC_PID"
wait_exit 10 "$PC_PID" || fail "kvr-pc ignored SIGTERM with unsaved text"
# The window holds the program last compiled, or a new text.
kept=$(ls "$E2E_DIR"/LONG.001.KVR "$SETTINGS_DIR"/program/UNTITLED.001.KVR 2>/dev/null | head -n1) || true
[ -n "$kept" ] && grep -q ": KEPT 1 ;" "$kept" || fail "unsaved text not kept: $(ls -R "$SETTINGS_DIR")"
start_pc
wait_window 20 '^KVR-PC for Windows$' >/dev/null
screenshot session-note
keys "$(window_id '^KVR-PC for Windows$')" Return
FRAME=$(wait_window 20 '^KVR-PC for Windows - KVR4410 ANS Forth - COM9$')
exit_ok
stop_board

# --- TCP: the board restarted on its port
start_board --log "$log"
port=$BOARD_PORT
start_pc --simulator "127.0.0.1:$port"
keys "$(wait_window 20 '^KVR-PC for Windows$')" Return   # "Connected to IP address ..."
FRAME=$(wait_window 20 "^KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 127.0.0.1 port $port - connected$")
kill -TERM "$BOARD_PID"
wait "$BOARD_PID" 2>/dev/null || true
wait_until 2 eval 'caption | grep -q "link down: "' || fail "caption does not say the TCP link is down: $(caption)"
wait_until 2 eval '[ "$(boxes)" -ge 1 ]' || fail "no message about the lost connection"
keys "$(window_id '^KVR-PC for Windows$')" Return
start_board --log "$log" --port "$port"
wait_until 3 eval 'caption | grep -q " - connected$"' || fail "TCP link did not come back: $(caption)"
[ "$(boxes)" -eq 0 ] || fail "reconnecting asked something"
typed_line_arrives "4 4 * ." 3 || fail "a typed line did not reach the restarted board"
screenshot tcp-back
exit_ok
echo "link: ok"
