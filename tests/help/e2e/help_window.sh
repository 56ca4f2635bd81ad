#!/usr/bin/env bash
# A user on the simulated board: F1 in the editor opens its help page,
# and the DOS window on a desktop without any terminal program says so
# instead of doing nothing.
source "$KVR_SOURCE_DIR/tests/e2e/lib.sh"

start_display
start_board
mkdir -p "$SETTINGS_DIR"
printf '[Parameters]\r\nIntercharacter delay - KVR4410=0\r\nOpening dialogue=OFF\r\n' >"$SETTINGS_DIR/KVR-PC.INI"
# No terminal emulator anywhere: an empty PATH entry and no $TERMINAL.
PATH="$E2E_DIR/nobin" TERMINAL= start_pc --simulator "127.0.0.1:$BOARD_PORT"
keys "$(wait_window 20 '^KVR-PC for Windows$')" Return   # "Connected to IP address ..."
frame=$(wait_window 20 '^KVR-PC for Windows - .* - connected$')
# After the greeting the first editor window has the focus.
keys "$frame" F1
help=$(wait_window 10 '^KVR-PC Help - Editor window$')
screenshot editor-help

keys "$frame" alt+f d
box=$(wait_window 10 '^KVR-PC for Windows$')
screenshot no-terminal
keys "$box" Return
wait_until 5 bash -c "! xdotool search --onlyvisible --name '^KVR-PC for Windows\$' >/dev/null" \
    || fail "the message box did not close"
echo "PASS"
