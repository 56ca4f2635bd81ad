# Shared helpers for end-to-end tests: a private X display with a window
# manager, the simulated board, the real kvr-pc, and xdotool to drive it.
# Source this file; every test gets its own scratch folder and display.
set -euo pipefail

: "${KVR_BIN_DIR:?KVR_BIN_DIR must name the bin folder of the build}"
: "${KVR_SOURCE_DIR:?KVR_SOURCE_DIR must name the source tree}"
unset QT_QPA_PLATFORM   # the real window, on the private display

E2E_DIR=$(mktemp -d /tmp/kvr-e2e.XXXXXX)
E2E_PIDS=()
E2E_NAME=$(basename "$0" .sh)
E2E_SHOTS=${KVR_E2E_SHOTS:-$KVR_BIN_DIR/../e2e-screenshots}
mkdir -p "$E2E_SHOTS"

e2e_cleanup() {
    kill "${E2E_PIDS[@]}" 2>/dev/null || true
    wait "${E2E_PIDS[@]}" 2>/dev/null || true
    rm -rf "$E2E_DIR"
}
trap e2e_cleanup EXIT

fail() { echo "FAIL: $*" >&2; screenshot "failure" || true; exit 1; }

# wait_until SECONDS COMMAND...: polls COMMAND until it succeeds.
wait_until() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $deadline ] || return 1
        sleep 0.1
    done
}

start_display() {
    local fdfile="$E2E_DIR/display"
    Xvfb -displayfd 9 -screen 0 1280x1024x24 -nolisten tcp 9>"$fdfile" 2>"$E2E_DIR/xvfb.log" &
    E2E_PIDS+=($!)
    wait_until 10 test -s "$fdfile" || fail "Xvfb did not start"
    export DISPLAY=":$(head -n1 "$fdfile")"
    openbox >"$E2E_DIR/openbox.log" 2>&1 &
    E2E_PIDS+=($!)
    wait_until 10 xprop -root _NET_SUPPORTING_WM_CHECK || fail "window manager did not start"
}

# start_board [ARGS...]: starts kvr-board on a free port; sets BOARD_PORT.
start_board() {
    local out="$E2E_DIR/board.out"
    rm -f "$out"
    "$KVR_BIN_DIR/kvr-board" --port 0 --no-heartbeat "$@" >"$out" 2>"$E2E_DIR/board.err" &
    BOARD_PID=$! && E2E_PIDS+=($!)
    wait_until 10 grep -q '^listening on' "$out" || fail "kvr-board did not start: $(cat "$E2E_DIR/board.err")"
    BOARD_PORT=$(sed -n 's/^listening on [0-9.]*:\([0-9]*\).*/\1/p' "$out" | head -n1)
}

# start_pc [ARGS...]: starts kvr-pc with a private settings folder; sets PC_PID.
SETTINGS_DIR="$E2E_DIR/settings"
start_pc() {
    "$KVR_BIN_DIR/kvr-pc" --settings-dir "$SETTINGS_DIR" "$@" >>"$E2E_DIR/pc.log" 2>&1 &
    PC_PID=$! && E2E_PIDS+=($PC_PID)
}

# window_id NAME-REGEX: the first visible window whose title matches.
window_id() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n1; }

has_window() { [ -n "$(window_id "$1")" ]; }

visible_windows() {
    local wid
    for wid in $(xdotool search --onlyvisible --name . 2>/dev/null); do printf '%s|' "$(xdotool getwindowname "$wid")"; done
}

# wait_window SECONDS NAME-REGEX: waits for the window; prints its id.
wait_window() {
    local seconds=$1 name=$2
    wait_until "$seconds" has_window "$name" \
        || fail "no window named /$name/ within ${seconds}s; windows: $(visible_windows)"
    window_id "$name"
}

activate() { xdotool windowactivate --sync "$1" 2>/dev/null || xdotool windowfocus --sync "$1"; }
# keys WINDOW KEY...: activates the window, then presses the keys in it.
# --clearmodifiers: the Caps Lock option locks the keyboard's Caps Lock.
keys() { activate "$1" && shift && xdotool key --clearmodifiers --delay 40 "$@"; }
# type_text WINDOW TEXT: types into the focused window.
type_text() { activate "$1" && shift && xdotool type --clearmodifiers --delay 30 "$*"; }

screenshot() { import -window root "$E2E_SHOTS/$E2E_NAME-$1.png" 2>/dev/null && echo "screenshot: $E2E_SHOTS/$E2E_NAME-$1.png"; }

# wait_exit SECONDS PID: waits for the process to end.
process_gone() { ! kill -0 "$1" 2>/dev/null; }
wait_exit() { wait_until "$1" process_gone "$2"; }

# crlf FILE: writes standard input to FILE with CR LF line ends.
crlf() { sed 's/$/\r/' > "$1"; }

# write_settings: KVR-PC.INI for a 4410ANS board with the opening questions
# off; lines on standard input are added after [Parameters]'s own.
write_settings() {
    mkdir -p "$SETTINGS_DIR"
    { printf '%s\n' '[Parameters]' 'KVR-PC version=3.20' 'KVR computer type=4410ANS' 'Opening dialogue=OFF' \
          'Wizard question=OFF' 'Intercharacter delay - KVR4410=0' 'Timeout=3000'
      cat; } | crlf "$SETTINGS_DIR/KVR-PC.INI"
}

# answer_boxes: Return to every message box titled like the frame's first
# caption.
answer_boxes() {
    local wid
    for wid in $(xdotool search --onlyvisible --name '^KVR-PC for Windows$' 2>/dev/null); do
        keys "$wid" Return || true
    done
}

# start_connected FILE: kvr-pc on FILE against the board started with
# --log "$E2E_DIR/board.log", past the connect message and the board's
# greeting; sets FRAME.
start_connected() {
    local log="$E2E_DIR/board.log" before
    before=$(wc -l < "$log")
    start_pc --simulator "127.0.0.1:$BOARD_PORT" "$1"
    # The connect message shares its title with the frame's first caption:
    # answer whatever carries that title until the frame says "connected"
    # and the board has its start-up line.
    greeted() {
        FRAME=$(window_id '^KVR-PC for Windows - .* - connected$')
        [ -n "$FRAME" ] && tail -n +$((before + 1)) "$log" | grep -q START && ! has_window '^KVR-PC for Windows$' \
            && return 0
        answer_boxes
        return 1
    }
    wait_until 30 greeted || fail "not connected and greeted; windows: $(visible_windows)"
}
