#!/usr/bin/env bash
# The source editor in the real program: a .KVR named on the command line
# opens in an editor window; a typed line past 80 characters raises the box;
# the file is saved, the window closed and the file reopened from the
# frame's recent-file list.
source "$(dirname "$0")/lib.sh"

start_display
start_board
work="$E2E_DIR/work"
mkdir -p "$work"
printf ': PUMP  1 2 + . ;   \r\n' >"$work/pump.kvr"
logical=$(printf '%s' "$work/pump.kvr" | tr '[:lower:]' '[:upper:]')

start_pc --simulator "127.0.0.1:$BOARD_PORT" "$work/pump.kvr"
frame=$(wait_window 20 '^KVR-PC for Windows - ')
ini="$SETTINGS_DIR/KVR-PC.INI"
wait_until 10 grep -qF "RecentFile1=$logical" "$ini" || fail "file not opened: $(cat "$ini")"
screenshot opened

# A new line of 81 characters: the 81st raises the box.
keys "$frame" ctrl+End Return
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
wait_until 10 saved || fail "saved file differs: $(od -c "$work/pump.kvr" | head)"

# Close the editor window (clean now: no question).
keys "$frame" ctrl+F4
screenshot closed

# Reopen from the frame's recent list: File, then the last item.
keys "$frame" alt+f
sleep 0.3
screenshot file-menu
keys "$frame" Up Return
sleep 0.5
screenshot reopened
# The reopened text is shown again: its long line raises one load box.
box=$(wait_window 10 '^KVR-PC for Windows$')
keys "$box" Return
echo "editor: ok"
