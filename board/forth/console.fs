\ The board's console: characters are read one at a time and echoed as they
\ are taken; carriage return ends the line, which is interpreted; one reply
\ line ending in CR LF follows: " ok", or the offending word, " ?  - " and
\ the message.

256 constant line-max
create line-buffer line-max chars allot
variable #line
2variable last-word    \ the word the interpreter parsed last
create key-cell 1 chars allot

:noname ( -- c-addr u )  defers parse-name 2dup last-word 2! ; is parse-name

: crlf ( -- )  13 emit 10 emit ;
: cr ( -- )  crlf ;
: flush-out ( -- )  outfile-id flush-file drop ;

\ The host closing our input means the board is switched off.
: board-key ( -- c )
    flush-out
    key-cell 1 stdin read-file throw 0= IF 0 (bye) THEN
    key-cell c@ ;

: sign-on ( -- )  crlf sign-on-text type crlf flush-out ;

: COLD ( -- )  flush-out 42 (bye) ;
: bye ( -- )  COLD ;
: quit ( -- )  -56 throw ;

: ok-reply ( -- )  ."  ok" crlf ;

: error-reply ( n -- )
    last-word 2@ type ."  ?  - " error-text type crlf ;

: line-failed ( n -- )
    dup -1 = over -56 = or IF drop ok-reply ELSE error-reply THEN
    clearstacks  clear-leave-stack  ['] [ execute  0 "error ! ;

: run-line ( -- )
    0 0 last-word 2!
    line-buffer #line @ 0 #line !
    ['] evaluate catch ?dup IF line-failed ELSE ok-reply THEN ;

: add-char ( c -- )
    #line @ line-max < IF dup line-buffer #line @ + c! 1 #line +! emit ELSE drop THEN ;

: rub-out ( -- )
    #line @ IF -1 #line +! 8 emit bl emit 8 emit THEN ;

: take-char ( c -- )
    dup 13 = IF drop bl emit run-line EXIT THEN
    dup 8 = over 127 = or IF drop rub-out EXIT THEN
    dup 3 = IF drop 0 #line ! EXIT THEN     \ break: drop the line typed so far
    dup 9 = IF drop bl THEN
    dup bl < IF drop EXIT THEN
    add-char ;

\ A break signal while waiting for a key only interrupts the wait.
: board-loop ( -- )
    BEGIN ['] board-key catch ?dup IF drop ELSE take-char THEN AGAIN ;
