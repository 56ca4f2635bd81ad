\ Board types: sign-on, start and end of the dictionary and the error texts.
\ A 4410F is a 4410 with ANS Forth and flash.

: board-type ( -- c-addr u )  s" KVR_BOARD_TYPE" getenv ;

0 constant ans-4410
1 constant fig-4410
2 constant fig-6630

: dialect ( -- n )
    board-type 2dup s" 4410Fig" str= IF 2drop fig-4410 EXIT THEN
    s" 6630Fig" str= IF fig-6630 ELSE ans-4410 THEN ;
dialect constant this-board
board-type s" 4410F" str= constant flash-board

: env-number ( c-addr u -- n )  \ 0 when unset or not a number
    getenv s>number? 0= IF 2drop 0 EXIT THEN drop ;

: fig? ( -- flag )  this-board ans-4410 <> ;
: kvr4410? ( -- flag )  this-board fig-6630 <> ;

\ Where the dictionary of a freshly started board begins (16-bit address).
: dictionary-start ( -- addr )
    this-board CASE
        ans-4410 OF $3C00 ENDOF
        fig-4410 OF $2E00 ENDOF
        fig-6630 OF $B400 ENDOF
    ENDCASE ;

\ The first address above the dictionary: a 4410 keeps its system page at
\ $FD00 and a 4410F its flash from KVR_FLASH_BASE.
: dictionary-end ( -- addr )
    flash-board IF s" KVR_FLASH_BASE" env-number EXIT THEN
    kvr4410? IF $FD00 ELSE $10000 THEN ;

: sign-on-text ( -- c-addr u )
    this-board CASE
        ans-4410 OF flash-board IF s" KVR4410F ANS Forth V3.2  (simulated board)"
                    ELSE s" KVR4410 ANS Forth V3.2  (simulated board)" THEN ENDOF
        fig-4410 OF s" KVR4410 fig-FORTH V2.7  (simulated board)" ENDOF
        fig-6630 OF s" KVR6630 fig-FORTH V1.9  (simulated board)" ENDOF
    ENDCASE ;

: ans-message ( n -- c-addr u )
    CASE
        -3  OF s" stack overflow" ENDOF
        -4  OF s" stack underflow" ENDOF
        -5  OF s" return stack overflow" ENDOF
        -6  OF s" return stack underflow" ENDOF
        -7  OF s" loops nested too deeply" ENDOF
        -8  OF s" dictionary overflow" ENDOF
        -9  OF s" invalid memory address" ENDOF
        -10 OF s" division by zero" ENDOF
        -11 OF s" result out of range" ENDOF
        -12 OF s" argument type mismatch" ENDOF
        -13 OF s" undefined word" ENDOF
        -14 OF s" interpreting a compile-only word" ENDOF
        -15 OF s" invalid FORGET" ENDOF
        -16 OF s" zero-length name" ENDOF
        -17 OF s" number output overflow" ENDOF
        -18 OF s" parsed string overflow" ENDOF
        -19 OF s" name too long" ENDOF
        -21 OF s" unsupported operation" ENDOF
        -22 OF s" control structure mismatch" ENDOF
        -23 OF s" address alignment exception" ENDOF
        -24 OF s" invalid numeric argument" ENDOF
        -25 OF s" return stack imbalance" ENDOF
        -26 OF s" loop parameters unavailable" ENDOF
        -28 OF s" user interrupt" ENDOF
        -29 OF s" compiler nesting" ENDOF
        -31 OF s" >BODY used on non-CREATEd word" ENDOF
        -32 OF s" invalid name argument" ENDOF
        s" error" rot
    ENDCASE ;

: fig-message ( n -- c-addr u )
    CASE
        -3  OF s" STACK FULL" ENDOF
        -4  OF s" EMPTY STACK" ENDOF
        -5  OF s" RETURN STACK FULL" ENDOF
        -6  OF s" RETURN STACK EMPTY" ENDOF
        -8  OF s" DICTIONARY FULL" ENDOF
        -9  OF s" BAD ADDRESS" ENDOF
        -10 OF s" DIVISION BY ZERO" ENDOF
        -13 OF s" NOT FOUND" ENDOF
        -14 OF s" COMPILATION ONLY" ENDOF
        -15 OF s" IN PROTECTED DICTIONARY" ENDOF
        -16 OF s" NO NAME" ENDOF
        -22 OF s" CONDITIONALS NOT PAIRED" ENDOF
        -24 OF s" BAD NUMBER" ENDOF
        -21 OF s" NO ASSEMBLER" ENDOF
        -28 OF s" BREAK" ENDOF
        -1018 OF s" EXECUTION ONLY" ENDOF
        -1020 OF s" DEFINITION NOT FINISHED" ENDOF
        -1022 OF s" USE ONLY WHEN LOADING" ENDOF
        s" ERROR" rot
    ENDCASE ;

: error-text ( n -- c-addr u )
    dup -2 = IF drop "error @ ?dup IF count EXIT THEN s" aborted" EXIT THEN
    fig? IF fig-message ELSE ans-message THEN ;

\ The PC sends DIS before it loads its upload program; on this board there is
\ nothing for it to switch off.
: DIS ( -- ) ;
