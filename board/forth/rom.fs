\ The board's ROM words: exactly the words of the type's word lists (the
\ lists the words templates are made from), in one word list that is the
\ only one a user's program sees. Each takes its action from the dialect's
\ own definitions first, then from the host Forth.

wordlist constant rom
wordlist constant dialect-words   \ definitions that differ from the host's
variable rom-missing

: rom-lists ( -- c-addr u )
    this-board CASE
        ans-4410 OF s" ans-core ans-core-ext kvr4410ans" ENDOF
        fig-4410 OF s" fig kvr4410fig" ENDOF
        fig-6630 OF s" fig kvr6630fig" ENDOF
    ENDCASE ;

: restricted? ( nt -- flag )  cell+ @ restrict-mask and 0<> ;

\ The ROM word c-addr u acts as nt does: immediate, compile-only or with
\ separate compilation semantics alike.
: rom-alias ( c-addr u nt -- )
    >r nextname  get-current rom set-current
    r@ name>int  r@ name>comp  ['] execute = IF
        2dup = IF drop alias immediate ELSE interpret/compile: THEN
    ELSE drop alias THEN
    r> restricted? IF compile-only THEN
    set-current ;

: rom-source ( c-addr u -- nt | 0 )
    2dup dialect-words (search-wordlist) ?dup IF nip nip EXIT THEN
    forth-wordlist (search-wordlist) ;

: rom-word ( c-addr u -- )
    2dup rom search-wordlist IF drop 2drop EXIT THEN   \ listed twice
    2dup rom-source ?dup IF rom-alias EXIT THEN
    rom-missing on  s" kvr-board: no action for ROM word " stderr write-file throw
    stderr write-line throw ;

create list-line 160 chars allot

\ The first blank-delimited field of each line that is not a comment.
: rom-list ( c-addr u -- )
    s" .words" s+ r/o open-file throw >r
    BEGIN list-line 160 r@ read-line throw WHILE
        list-line swap  2dup s" \" string-prefix? IF 2drop ELSE
        bl skip 2dup bl scan nip - ?dup IF rom-word ELSE drop THEN THEN
    REPEAT drop r> close-file throw ;

: rom-build ( -- )
    rom-lists BEGIN bl skip dup WHILE 2dup bl scan 2swap 2 pick - rom-list REPEAT 2drop
    \ notation entries that are words on every board
    s" (" rom-word  s" \" rom-word ;

\ --list-words: the board's words, one a line, then the host Forth ends.
: rom-words ( -- )
    rom wordlist-id @ BEGIN ?dup WHILE dup name>string type 10 emit @ REPEAT ;

\ What the user's program sees and where its definitions go.
: rom-order ( -- )  rom 1 set-order  rom set-current ;
