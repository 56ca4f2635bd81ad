#!/usr/bin/env bash
# Time from starting kvr-pc on a fresh configuration (so the delay
# calibration runs) to its frame being visible, median of several starts.
source "$KVR_SOURCE_DIR/tests/e2e/lib.sh"
start_display
runs=5
times=()
for i in $(seq 1 $runs); do
    rm -rf "$SETTINGS_DIR"
    mkdir -p "$SETTINGS_DIR"
    printf '[Parameters]\r\nOpening dialogue=OFF\r\n' >"$SETTINGS_DIR/KVR-PC.INI"
    begin=$(date +%s%N)
    start_pc
    until [ -n "$(xdotool search --onlyvisible --name '^KVR-PC for Windows - ' 2>/dev/null | head -n1)" ]; do
        sleep 0.005
    done
    end=$(date +%s%N)
    times+=($(((end - begin) / 1000000)))
    kill "$PC_PID"
    wait "$PC_PID" 2>/dev/null || true
done
sorted=($(printf '%s\n' "${times[@]}" | sort -n))
echo "kvr-pc start to visible frame, fresh settings (calibration included): median ${sorted[$((runs / 2))]} ms (runs: ${times[*]} ms; goal < 1000 ms)"
