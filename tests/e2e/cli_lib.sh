# Shared helpers for the command-line end-to-end scripts. Source this file
# after setting BIN (the build's bin folder) and work (a scratch folder).

# fail MESSAGE: counts a failure and goes on; end with the failure count.
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_eq() { [ "$1" == "$2" ] || fail "$3: expected '$2', got '$1'"; }

# crlf FILE: writes standard input to FILE with CR LF line ends.
crlf() { sed 's/$/\r/' > "$1"; }

# spawn_board NAME [OPTION...]: a board on a free port, logging every line it
# receives to NAME.log; sets spawned_pid and spawned_port (empty when it did
# not start).
spawn_board() {
    local name=$1
    shift
    "$BIN/kvr-board" --port 0 --no-heartbeat --log "$work/$name.log" "$@" > "$work/$name.out" 2> "$work/$name.err" &
    spawned_pid=$!
    for _ in $(seq 1 200); do
        spawned_port=$(sed -n 's/^listening on 127\.0\.0\.1:\([0-9]*\)$/\1/p' "$work/$name.out")
        [ -z "$spawned_port" ] && kill -0 "$spawned_pid" 2>/dev/null || break
        sleep 0.05
    done
}

# start_main_board: the board the script's commands go to, or the end of
# the script when it does not start; sets board_pid and port.
start_main_board() {
    spawn_board board
    board_pid=$spawned_pid
    port=$spawned_port
    [ -n "$port" ] || { echo "kvr-board did not start:"; cat "$work/board.err"; exit 1; }
}

# board_settings: KVR-PC.INI for a 4410ANS board without delays that also
# seeks INCLUDE files in $work/extra; sets settings and makes the folders.
board_settings() {
    settings="$work/settings"
    mkdir -p "$settings/program" "$work/src" "$work/extra"
    crlf "$settings/KVR-PC.INI" <<INI
[Parameters]
KVR computer type=4410ANS
Intercharacter delay - KVR4410=0
Timeout=3000
Extra source file search paths=$work/extra/;
INI
}
