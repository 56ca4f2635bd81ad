\ The board's console: characters are read one at a time and echoed as they
\ are taken; carriage return ends the line, which is interpreted; one reply
\ line ending in CR LF follows: " ok", or the offending word, " ?  - " and
\ the message. The console is the input source of the interpreter, so words
\ that read on (such as [IF] skipping lines) take the next line typed, after
\ the current line has had its " ok".

256 constant line-max
2variable last-word    \ the word the interpreter parsed last

:noname ( -- c-addr u )  defers parse-name 2dup last-word 2! ; is parse-name

: crlf ( -- )  13 emit 10 emit ;
: cr ( -- )  crlf ;

\ The host closing our input means the board is switched off. Keys are
\ taken one by one, unbuffered, so that KEY? sees what is still to come.
: board-key ( -- c )
    flush-out
    stdin key-file  dup 4 = IF stdin file-eof? IF 0 (bye) THEN THEN ;

\ The sign-on goes out in one piece: the bridge takes it as the sign of a
\ board that is up.
create sign-on-line 80 chars allot
: sign-on ( -- )
    sign-on-text >r  sign-on-line 2 + r@ move
    13 sign-on-line c!  10 sign-on-line 1+ c!
    13 sign-on-line r@ 2 + + c!  10 sign-on-line r@ 3 + + c!
    sign-on-line r> 4 + type ;

: COLD ( -- )  flush-out flash-sync 42 (bye) ;
: bye ( -- )  COLD ;
: quit ( -- )  -56 throw ;

: ok-reply ( -- )  ."  ok" crlf ;

: error-reply ( n -- )
    last-word 2@ type ."  ?  - " error-text type crlf ;

\ After an error the board is back at its prompt: empty stacks, interpreting.
: line-failed ( n -- )
    dup -1 = over -56 = or IF drop ok-reply ELSE error-reply THEN
    clearstacks  clear-leave-stack  normal-dp dpp !  ['] [ execute  0 "error ! ;

: add-char ( c -- )
    #tib @ max#tib @ < IF dup tib #tib @ + c! 1 #tib +! emit ELSE drop THEN ;

: rub-out ( -- )
    #tib @ IF -1 #tib +! 8 emit bl emit 8 emit THEN ;

\ Carriage return ends a line; so does a line feed that does not follow one,
\ for terminals that send line feeds alone.
variable after-cr

\ Takes one character into the line; true when it ended the line.
: take-char ( c -- flag )
    dup 10 = after-cr @ 0= and IF drop 13 THEN
    dup 13 = after-cr !
    dup 13 = IF drop bl emit true EXIT THEN
    dup 8 = over 127 = or IF drop rub-out false EXIT THEN
    dup 3 = IF drop 0 #tib ! false EXIT THEN   \ break: drop the line typed so far
    dup 9 = IF drop bl THEN
    dup bl < IF drop false EXIT THEN
    add-char false ;

\ Tells the bridge, on a channel of its own, whether the board is waiting
\ for a line (2) or working on one (1), so it knows when a break is due,
\ and when a program starts reading keys itself (3): from then until the
\ next line every byte is the program's, Ctrl-C included.
: report ( c -- )  stderr emit-file drop ;

variable keys-taken
: key ( -- c )  keys-taken @ 0= IF 3 report keys-taken on THEN board-key ;
: key? ( -- flag )  flush-out stdin key?-file ;

: read-line ( -- )
    2 report  keys-taken off
    0 #tib !  BEGIN board-key take-char UNTIL  input-start-line  1 report ;

\ The console as an input source.
: console-refill ( -- flag )  ok-reply read-line true ;
:noname ( -- addr u )  tib #tib @ ;
create console-input
    ,  ' console-refill ,  ' false ,
    :noname ( -- in 1 ) >in @ 1 ; ,
    :noname ( in 1 -- ) 1 <> -12 and throw >in ! ; ,

\ A comment may run over several lines, as it may in a source file.
: ( ( "ccc<paren>" -- )
    BEGIN
        source >in @ /string [char] ) scan
        IF source drop - 1+ >in ! EXIT THEN drop
        refill 0=
    UNTIL ; immediate

: board-line ( -- )
    forget-line? IF
        2dup last-word 2!  find-name dup 0= IF -13 throw THEN forget-word EXIT
    THEN interpret ;

: run-line ( -- )
    read-line  0 0 last-word 2!
    ['] board-line catch ?dup IF line-failed ELSE ok-reply THEN  flash-sync ;

\ A break signal while waiting for a key only interrupts the wait.
: board-loop ( -- )
    console-input line-max new-tib
    BEGIN ['] run-line catch drop AGAIN ;
