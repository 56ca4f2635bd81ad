#!/usr/bin/env bash
# The Debian package: its contents, its desktop integration, and the
# programs run from a scratch root where it is unpacked.
source "$KVR_SOURCE_DIR/tests/e2e/lib.sh"
build="$KVR_BIN_DIR/.."

command -v cpack >/dev/null && command -v dpkg-deb >/dev/null || { echo "SKIP: cpack or dpkg-deb missing"; exit 0; }

cpack --config "$build/CPackConfig.cmake" -B "$E2E_DIR/package" >"$E2E_DIR/cpack.log" 2>&1 \
    || fail "cpack failed: $(tail -n 5 "$E2E_DIR/cpack.log")"
deb=$(ls "$E2E_DIR"/package/kvr-pc_*.deb)
dpkg-deb -c "$deb" | awk '{ print $NF }' | sed 's|^\./||' >"$E2E_DIR/contents"

expect() {
    grep -qx "$1" "$E2E_DIR/contents" || fail "the package lacks $1"
}
for file in usr/bin/{kvr-pc,kvr,kvr-board} usr/share/man/man1/{kvr-pc,kvr,kvr-board}.1.gz \
    usr/share/applications/kvr-pc.desktop usr/share/mime/packages/kvr-pc.xml \
    usr/share/icons/hicolor/scalable/apps/kvr-pc.svg usr/share/bash-completion/completions/kvr; do
    expect "$file"
done
for size in 16 32 48 64 128 256; do expect "usr/share/icons/hicolor/${size}x${size}/apps/kvr-pc.png"; done
# Everything the data and example folders ship, templates and board programs included.
while IFS= read -r file; do expect "usr/share/kvr-pc/$file"; done < <(
    cd "$KVR_SOURCE_DIR/data" && find . -type f | sed 's|^\./||'
    cd "$KVR_SOURCE_DIR/examples" && find . -type f | sed 's|^\./|examples/|'
    cd "$build/data" && find . -type f | sed 's|^\./||')

depends=$(dpkg-deb -f "$deb" Depends)
while read -r role package; do
    [ "$role" != run ] || [[ ", $depends," == *", $package,"* ]] || fail "Depends lacks $package: $depends"
done <"$KVR_SOURCE_DIR/scripts/packages.list"

root="$E2E_DIR/root"
dpkg-deb -x "$deb" "$root"
if command -v desktop-file-validate >/dev/null; then
    desktop-file-validate "$root/usr/share/applications/kvr-pc.desktop" || fail "invalid desktop entry"
fi
grep -qx 'MimeType=text/x-kvr-forth;' "$root/usr/share/applications/kvr-pc.desktop" \
    || fail "the desktop entry does not open .KVR files"
if command -v update-mime-database >/dev/null; then
    update-mime-database "$root/usr/share/mime" 2>"$E2E_DIR/mime.err" || fail "MIME file refused"
    grep -q '^50:text/x-kvr-forth:\*\.kvr$' "$root/usr/share/mime/globs2" || fail "*.kvr is not text/x-kvr-forth"
fi

# The manual page of kvr carries every command's options.
zcat "$root/usr/share/man/man1/kvr.1.gz" >"$E2E_DIR/kvr.1"
commands=$("$root/usr/bin/kvr" --help | awk '/^Commands:/ { on = 1; next } on && NF == 0 { exit } on { print $1 }')
for command in ${commands:?kvr --help lists no commands}; do
    for option in $("$root/usr/bin/kvr" "$command" --help | grep -o -- '--[a-z][a-z-]*' | sort -u); do
        grep -q -- "${option//-/\\\\-}\|$option" "$E2E_DIR/kvr.1" || fail "kvr(1) lacks $command $option"
    done
done

# Help needs no display.
env -u DISPLAY QT_QPA_PLATFORM= "$root/usr/bin/kvr-pc" --help | grep -q '^Usage: kvr-pc' \
    || fail "kvr-pc --help does not answer without a display"

# The unpacked programs work together, finding their data beside them.
version=$("$root/usr/bin/kvr" --version)
[ "$version" = "kvr $(dpkg-deb -f "$deb" Version)" ] || fail "kvr --version says '$version'"
"$root/usr/bin/kvr-board" --list-words --type 4410ANS | grep -qx 'DUP' || fail "kvr-board lists no DUP"
"$root/usr/bin/kvr-board" --port 0 --no-heartbeat >"$E2E_DIR/board.out" 2>"$E2E_DIR/board.err" &
E2E_PIDS+=($!)
wait_until 10 grep -q '^listening on' "$E2E_DIR/board.out" || fail "installed kvr-board did not start"
port=$(sed -n 's/^listening on [0-9.]*:\([0-9]*\).*/\1/p' "$E2E_DIR/board.out")
mkdir -p "$E2E_DIR/settings"
printf '[Parameters]\r\nIntercharacter delay=0\r\n' >"$E2E_DIR/settings/KVR-PC.INI"
"$root/usr/bin/kvr" --settings-dir "$E2E_DIR/settings" compile \
    "$root/usr/share/kvr-pc/examples/HELLO.KVR" --remote "127.0.0.1:$port" --quiet >"$E2E_DIR/compile.out" \
    || fail "compile of the installed example failed: $(cat "$E2E_DIR/compile.out")"
grep -q 'FINISHED at [0-9A-F]\{4\}' "$E2E_DIR/compile.out" || fail "no FINISHED line: $(cat "$E2E_DIR/compile.out")"
echo "PASS"
