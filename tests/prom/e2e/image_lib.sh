# Helpers of the PROM end-to-end tests: a PROM image parser of our own (not
# the program's), and the board's memory read back with C@.

# parse_image FILE srec|ihex START: checks every record (form, count,
# checksum, addresses contiguous from START, end record last) and prints
# the data bytes in hexadecimal, one per line. Fails naming the line.
parse_image() {
    local file=$1 format=$2 next=$((16#$3)) n=0 ended=0 line body i sum count address kind
    while IFS= read -r line || [ -n "$line" ]; do
        n=$((n + 1))
        line=${line%$'\r'}
        [ -z "$line" ] && continue
        [ "$ended" = 0 ] || { echo "$file line $n: after the end record" >&2; return 1; }
        if [ "$format" = srec ]; then
            [[ $line =~ ^S([0-9])([0-9A-F]+)$ ]] || { echo "$file line $n: not an S-record: $line" >&2; return 1; }
            kind=S${BASH_REMATCH[1]}
            body=${BASH_REMATCH[2]}
        else
            [[ $line =~ ^:([0-9A-F]+)$ ]] || { echo "$file line $n: not an Intel hex record: $line" >&2; return 1; }
            body=${BASH_REMATCH[1]}
            kind=I${body:6:2}
        fi
        count=$((16#${body:0:2}))
        local want=$(((count + 1) * 2))
        [ "$format" = ihex ] && want=$(((count + 5) * 2))
        [ ${#body} -eq "$want" ] || { echo "$file line $n: length disagrees with the count" >&2; return 1; }
        sum=0
        for ((i = 0; i < ${#body}; i += 2)); do sum=$((sum + 16#${body:i:2})); done
        if [ "$format" = srec ]; then
            [ $((sum & 255)) -eq 255 ] || { echo "$file line $n: bad checksum" >&2; return 1; }
        else
            [ $((sum & 255)) -eq 0 ] || { echo "$file line $n: bad checksum" >&2; return 1; }
        fi
        address=$((16#${body:2:4}))
        case $kind in
        S1 | I00)
            [ "$address" -eq "$next" ] || { echo "$file line $n: address $address, not $next" >&2; return 1; }
            local first=6 size=$((count - 3))
            [ "$format" = ihex ] && first=8 size=$count
            for ((i = 0; i < size; i++)); do echo "${body:first+2*i:2}"; done
            next=$((next + size))
            ;;
        S9 | I01) ended=1 ;;
        S0 | S5) ;;
        *) echo "$file line $n: record $kind" >&2; return 1 ;;
        esac
    done <"$file"
    [ "$ended" = 1 ] || { echo "$file: no end record" >&2; return 1; }
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
