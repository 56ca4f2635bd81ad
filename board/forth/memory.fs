\ The board's 16-bit address space. Addresses below $10000 never belong to
\ the host process, so they are taken as board addresses: from the start of
\ the dictionary upwards they are the dictionary, below it a RAM area of its
\ own. Numbers shown by . and U. that are host addresses of these areas are
\ shown as board addresses, so what is printed can be typed back. The host
\ compiles about four times the code a 16-bit board does, so one board byte
\ of dictionary stands for four host bytes (a board address names the first).

$10000 allocate throw constant low-ram
low-ram $10000 erase

variable dict-base     \ host address of the board's dictionary start
variable board-start   \ its 16-bit board address
4 constant host/board   \ host bytes per board byte in the dictionary

: board-room ( -- u )  $10000 board-start @ - ;

: >real ( addr -- addr' )
    dup $10000 u< IF
        dup board-start @ u< IF low-ram + ELSE board-start @ - host/board * dict-base @ + THEN
    THEN ;

: >board ( addr -- addr' )
    dup dict-base @ - dup board-room host/board * u< IF
        nip host/board / board-start @ + EXIT THEN drop
    dup low-ram - dup board-start @ u< IF nip EXIT THEN drop ;

\ The board's dictionary ends below $10000 (checked once the board is up).
: ?room ( u -- )
    dict-base @ 0= IF drop EXIT THEN
    here + dict-base @ - host/board / board-room u> IF -8 throw THEN ;
: allot ( n -- )  dup 0> IF dup ?room THEN allot ;

: @ ( addr -- x )  >real @ ;
: ! ( x addr -- )  >real ! ;
: c@ ( addr -- c )  >real c@ ;
: c! ( c addr -- )  >real c! ;
: +! ( n addr -- )  >real +! ;
: 2@ ( addr -- x1 x2 )  >real 2@ ;
: 2! ( x1 x2 addr -- )  >real 2! ;
: count ( addr -- addr' u )  >real count ;
: type ( addr u -- )  swap >real swap type ;
: fill ( addr u c -- )  rot >real -rot fill ;
: erase ( addr u -- )  swap >real swap erase ;
: blank ( addr u -- )  swap >real swap blank ;
: blanks ( addr u -- )  blank ;
: move ( from to u -- )  >r >real swap >real swap r> move ;
: cmove ( from to u -- )  >r >real swap >real swap r> cmove ;
: cmove> ( from to u -- )  >r >real swap >real swap r> cmove> ;
: u. ( u -- )  >board u. ;
: . ( n -- )  >board . ;
: u.r ( u n -- )  swap >board swap u.r ;
: ? ( addr -- )  @ . ;
