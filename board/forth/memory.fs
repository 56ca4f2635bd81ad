\ The board's 16-bit address space. Addresses below $10000 never belong to
\ the host process, so they are taken as board addresses: from the start of
\ the dictionary to its end they are the dictionary, a 4410F's flash is a
\ range of its own, and the rest is RAM. Numbers shown by . and U. that are
\ host addresses of these areas are shown as board addresses, so what is
\ printed can be typed back. The host compiles about four times the code a
\ 16-bit board does, so one board byte of dictionary stands for four host
\ bytes (a board address names the first).

$10000 allocate throw constant low-ram
low-ram $10000 erase

variable dict-base     \ host address of the board's dictionary start
variable board-start   \ its 16-bit board address
variable dict-end      \ the first board address above it
4 constant host/board   \ host bytes per board byte in the dictionary

: board-room ( -- u )  dict-end @ board-start @ - ;

\ The flash of a 4410F lives in a host file (KVR_FLASH_FILE), so what is
\ written there outlives COLD and the board itself. The file is written
\ after every line that changed the flash.
variable sim-flash-base
variable sim-flash-size    \ 0: no flash
variable sim-flash-mem     \ what the board reads and writes
variable sim-flash-kept    \ what the file holds
variable sim-flash-fid

: flash? ( addr -- flag )  sim-flash-base @ - sim-flash-size @ u< ;

: flash-open ( -- )
    flash-board 0= IF EXIT THEN
    s" KVR_FLASH_BASE" env-number sim-flash-base !
    s" KVR_FLASH_SIZE" env-number sim-flash-size !
    sim-flash-size @ allocate throw sim-flash-mem !
    sim-flash-size @ allocate throw sim-flash-kept !
    sim-flash-mem @ sim-flash-size @ $FF fill
    s" KVR_FLASH_FILE" getenv r/w bin open-file throw sim-flash-fid !
    sim-flash-mem @ sim-flash-size @ sim-flash-fid @ read-file throw drop
    sim-flash-mem @ sim-flash-kept @ sim-flash-size @ move ;

: flash-sync ( -- )
    sim-flash-size @ 0= IF EXIT THEN
    sim-flash-mem @ sim-flash-size @ sim-flash-kept @ over compare 0= IF EXIT THEN
    0. sim-flash-fid @ reposition-file drop
    sim-flash-mem @ sim-flash-size @ sim-flash-fid @ write-file drop
    sim-flash-fid @ flush-file drop
    sim-flash-mem @ sim-flash-kept @ sim-flash-size @ move ;

: >real ( addr -- addr' )
    dup $10000 u< 0= IF EXIT THEN
    dup flash? IF sim-flash-base @ - sim-flash-mem @ + EXIT THEN
    dup board-start @ dict-end @ within IF board-start @ - host/board * dict-base @ + EXIT THEN
    low-ram + ;

: >board ( addr -- addr' )
    dup dict-base @ - dup board-room host/board * u< IF
        nip host/board / board-start @ + EXIT THEN drop
    dup low-ram - dup $10000 u< IF nip EXIT THEN drop ;

\ The board's dictionary ends below its end address (checked once the
\ board is up).
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
