#!/usr/bin/env bash
# A serial port this account may not open: the message names the device and
# says how to get access (the dialout group, logging in again).
source "$KVR_SOURCE_DIR/tests/e2e/lib.sh"

"$KVR_BIN_DIR/kvr-board" --pty --log "$E2E_DIR/board.log" >"$E2E_DIR/board.out" 2>&1 &
E2E_PIDS+=($!)
wait_until 10 grep -q '^pty ' "$E2E_DIR/board.out" || fail "kvr-board did not start"
device=$(sed -n 's/^pty //p' "$E2E_DIR/board.out" | head -n1)
chmod 000 "$device"

settings="$E2E_DIR/settings"
mkdir -p "$settings"
printf '[Parameters]\r\nIntercharacter delay=0\r\n[Serial devices]\r\nCOM9=%s\r\n' "$device" \
    >"$settings/KVR-PC.INI"
printf ': TWICE 2 * ;\r\n' >"$E2E_DIR/ONE.KVR"
chmod -R a+rwX "$E2E_DIR"

# Root opens anything: run kvr as an ordinary account when the tests run as root.
run_as_user=()
if [ "$(id -u)" -eq 0 ]; then
    command -v setpriv >/dev/null || { echo "SKIP: running as root without setpriv"; exit 0; }
    run_as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi

status=0
"${run_as_user[@]}" "$KVR_BIN_DIR/kvr" --settings-dir "$settings" compile "$E2E_DIR/ONE.KVR" \
    --port COM9 --quiet >"$E2E_DIR/out" 2>"$E2E_DIR/err" || status=$?
cat "$E2E_DIR/err"
[ "$status" -eq 2 ] || fail "exit status $status, expected 2 (link failure)"
# It names the device and says how to get access.
for words in "this account may not open $device" dialout "log in again"; do
    grep -q "$words" "$E2E_DIR/err" || fail "the message does not say '$words'"
done
[ ! -s "$E2E_DIR/board.log" ] || fail "the board received something"
echo "PASS"
