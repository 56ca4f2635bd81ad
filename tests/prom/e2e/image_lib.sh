# Helpers of the PROM end-to-end tests: a PROM image parser of our own (not
# the program's), and the board's memory read back with C@.

# parse_image FILE srec|ihex START: checks every record (form, count,
# checksum, addresses contiguous from START, end record last) and prints
# the data bytes in hexadecimal, one per line. Fails naming the line.
parse_image() {
    python3 - "$@" <<'PY'
import sys
path, form, next_address = sys.argv[1], sys.argv[2], int(sys.argv[3], 16)
ended = False
for n, line in enumerate(open(path, newline="").read().splitlines(), 1):
    if not line:
        continue
    try:
        assert not ended, "after the end record"
        assert line[0] == ("S" if form == "srec" else ":"), "not a record"
        b = bytes.fromhex(line[2:] if form == "srec" else line[1:])
        kind = line[1] if form == "srec" else "19"[b[3]] if b[3] < 2 else "?"
        assert len(b) == b[0] + (1 if form == "srec" else 5), "length disagrees with the count"
        assert sum(b) & 255 == (255 if form == "srec" else 0), "bad checksum"
        assert kind in "0159", "record type " + kind
        if kind == "1":
            assert b[1] * 256 + b[2] == next_address, "address not contiguous"
            data = b[3:-1] if form == "srec" else b[4:-1]
            print("\n".join("%02X" % x for x in data))
            next_address += len(data)
        ended = kind == "9"
    except (AssertionError, ValueError, IndexError) as fault:
        sys.exit("%s line %d: %s: %s" % (path, n, fault, line))
if not ended:
    sys.exit(path + ": no end record")
PY
}

# board_line PORT LINE: sends LINE to the board, prints its reply line.
board_line() {
    local reply=""
    exec 3<>"/dev/tcp/127.0.0.1/$1"
    printf '%s\r' "$2" >&3
    while IFS= read -r -t 10 reply <&3; do
        case $reply in *" ok"$'\r' | *"?  - "*) break ;; esac
    done
    exec 3>&-
    printf '%s\n' "${reply%$'\r'}"
}

# board_bytes PORT START END: the bytes from START up to END (hexadecimal),
# as the board's C@ reads them, one per line.
board_bytes() {
    board_line "$1" ": PROBE-C \$5B EMIT BASE @ HEX $((16#$3)) $((16#$2)) DO I C@ 0 <# # # #> TYPE SPACE LOOP BASE ! \$5D EMIT ; PROBE-C" \
        | sed 's/.*\[\(.*\)\].*/\1/' | tr ' ' '\n' | grep .
}
