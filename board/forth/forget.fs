\ Forgetting what was compiled, the way the PC asks for it.

\ Every definition made on the board is recorded with the dictionary as it
\ was before it (HERE and the newest word of its word list), so that the
\ PC's forget line can take it and all after it away again.
\ record: link, nt, here before, word list, its newest word before
variable definitions
: record-definition ( here wid head -- )
    5 cells allocate throw >r
    r@ 4 cells + !  r@ 3 cells + !  r@ 2 cells + !
    last @ r@ cell+ !  definitions @ r@ !  r> definitions ! ;

\ Frees the records down to and including rec.
: drop-records ( rec -- )
    >r BEGIN definitions @ dup r@ <> WHILE dup @ definitions ! free throw REPEAT
    @ definitions !  r> free throw ;

: forget-word ( nt -- )
    definitions @ BEGIN dup WHILE 2dup cell+ @ <> WHILE @ REPEAT THEN nip
    dup 0= IF -15 throw THEN   \ a word of the board's own
    dup 4 cells + @ over 3 cells + @ wordlist-id !
    dup 3 cells + @ rehash
    dup 2 cells + @ dp !
    drop-records ;

\ The PC takes its upload program off the board again with
\     ' JOB n - DUP @ CONTEXT @ ! 4 - DP !
\ which on a board's own header layout unlinks JOB and sets HERE back to
\ where JOB began. Here that line forgets the word and all after it.
: split-token ( c-addr u -- rest-addr rest-u token-addr token-u )
    bl skip 2dup bl scan 2swap 2 pick - ;

\ True when the rest of the line is exactly these words, in any case.
: words? ( c-addr u -- flag )
    BEGIN split-token dup WHILE
        parse-name capscompare IF 2drop false EXIT THEN
    REPEAT 2drop 2drop  parse-name nip 0= ;

: forget-line? ( -- c-addr u true | false )
    >in @ >r
    parse-name s" '" compare 0= IF
        parse-name  parse-name s>number? nip nip
        IF  s" - DUP @ CONTEXT @ ! 4 - DP !" words?
            IF r> drop true EXIT THEN
        THEN 2drop
    THEN r> >in ! false ;

