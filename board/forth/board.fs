\ KVR board personality: a Forth board as the PC sees it over its wire.
\ Run by kvr-board on gforth; KVR_BOARD_TYPE names the board type.

warnings off
require ./output.fs
require ./dialect.fs
require ./rom.fs
require ./memory.fs
require ./clock.fs
require ./forget.fs
require ./console.fs
require ./tools.fs
fig? [IF] require ./fig.fs [THEN]

\ A redefinition is reported the way the board does and accepted.
: board-header ( -- )
    $100 ?room
    here current @ dup wordlist-id @ 2>r >r
    defers header
    r> 2r> record-definition
    last @ ?dup IF
        name>string 2dup current @ search-wordlist
        IF drop type ."  NOT UNIQUE " ELSE 2drop THEN
    THEN ;

: board-main ( -- )
    decimal
    dictionary-start board-start !  dictionary-end dict-end !  here dict-base !
    flash-open
    ['] board-header is header
    \ no floating-point numbers on the board: 1E is no number here
    ['] no.extensions is interpreter-notfound1
    ['] no.extensions is compiler-notfound1
    rom-order  sign-on board-loop ;

rom-build
s" KVR_LIST_WORDS" getenv nip [IF] rom-words rom-missing @ 2 and (bye) [THEN]
board-main
