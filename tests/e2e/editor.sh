#!/usr/bin/env bash
# The source editor in the real program: a .KVR named on the command line
# opens in an editor window; a typed line past 80 characters raises the box;
# the file is saved, the window closed and the file reopened from the
# frame's recent-file list.
source "$(dirname "$0")/lib.sh"

start_display
start_board --log "$E2E_DIR/board.log"
work="$E2E_DIR/work"
mkdir -p "$work"
printf ': PUMP  1 2 + . ;   \r\n' >"$work/pump.kvr"
logical=$(printf '%s' "$work/pump.kvr" | tr '[:lower:]' '[:upper:]')

start_pc --simulator "127.0.0.1:$BOARD_PORT" "$work/pump.kvr"
connected=$(wait_window 20 '^KVR-PC for Windows$')
keys "$connected" Return
frame=$(wait_window 20 '^KVR-PC for Windows - .* - connected$')
ini="$SETTINGS_DIR/KVR-PC.INI"
wait_until 10 grep -qF "RecentFile1=$logical" "$ini" || fail "file not opened: $(cat "$ini")"

# The editor is the first child window, at the top left of the frame's
# client area; the terminal (bottom right) comes forward after start-up.
# The active child window's title bar is drawn in the highlight colour, so
# the editor is active when its title bar is blue.
read -r fx fy < <(xdotool getwindowgeometry --shell "$frame" | awk -F= '/^X=/{x=$2} /^Y=/{y=$2} END{print x, y}')
editor_active() {
    import -window root -crop "1x60+$((fx + 300))+$((fy + 10))" txt:- 2>/dev/null \
        | grep -oE '\([0-9]+,[0-9]+,[0-9]+' | tr -d '(' \
        | awk -F, '$3 > $1 + 60 { found = 1 } END { exit !found }'
}
bring_editor() {
    editor_active && return 0
    xdotool mousemove $((fx + 200)) $((fy + 200)) click 1
    wait_until 2 editor_active
}
# Start-up ends with the board's greeting line and the terminal in front.
wait_until 20 grep -q 'START' "$E2E_DIR/board.log" || fail "start-up line not received"
terminal_in_front() { ! editor_active; }
wait_until 10 terminal_in_front || fail "terminal not brought forward after start-up"
wait_until 20 bring_editor || fail "editor window not brought forward"
screenshot opened

# The empty line after the last line end takes 81 characters: the 81st
# raises the box.
keys "$frame" ctrl+End
long=$(printf 'A%.0s' $(seq 1 81))
type_text "$frame" "$long"
box=$(wait_window 10 '^KVR-PC for Windows$')
screenshot long-line
keys "$box" Return
wait_until 10 bash -c "! xdotool search --onlyvisible --name '^KVR-PC for Windows\$' >/dev/null" \
    || fail "long-line box did not close"

# Save: trailing blanks go, CR LF after every line, the long line kept.
keys "$frame" ctrl+s
expected=$(printf ': PUMP  1 2 + . ;\r\n%s\r\n' "$long")
saved() { [ "$(cat "$work/pump.kvr")" = "$expected" ]; }
wait_until 10 saved || fail "saved file differs: $(cat -A "$work/pump.kvr")"

# Close the editor window (clean now: no question).
keys "$frame" ctrl+F4

# Reopen from the frame's recent list: File, then its last item. Qt hands
# the keys that follow to the open menu, so no wait is needed between them.
keys "$frame" alt+f Up Return
# A fresh load (not the activation of a window still open) shows the load
# box for the long line.
box=$(wait_window 10 '^KVR-PC for Windows$')
screenshot reopened
keys "$box" Return
grep -qF "RecentFile1=$logical" "$ini" || fail "recent list changed: $(cat "$ini")"
echo "editor: ok"
