\ Words that list (VLIST, WORDS, DUMP, .S) and FORGET, on every board type.
\ A listing breaks its lines with CR and vertical tab: the terminal moves to
\ a new row on either line feed or vertical tab, while the PC's reply
\ receivers end a reply only at a line feed, so however long the listing,
\ the PC reads it and the " ok" after it as one reply.

64 constant list-width

: list-cr ( -- )  13 emit 11 emit  0 out ! ;
: ?list-cr ( u -- )  out @ + list-width > IF list-cr THEN ;

variable fence   \ FORGET keeps what lies below it

: show-words ( -- )
    list-cr  context @ wordlist-id @
    BEGIN ?dup WHILE
        dup name>string dup 1+ ?list-cr type space  @
    REPEAT ;

get-current dialect-words \ The board answers for itself, not for the host: no floating point here.
: ENVIRONMENT? ( c-addr u -- false | i*x true )
    s" CORE" capscompare 0= IF true true ELSE false THEN ;

set-current

: VLIST ( -- )  show-words ;
: WORDS ( -- )  show-words ;

: .S ( -- )
    ." <" depth 0 .r ." > "
    depth 0 ?DO depth i - 1- pick 7 ?list-cr . LOOP ;

: DUMP ( addr u -- )
    base @ >r hex
    bounds ?DO
        list-cr  i 0 <# # # # # #> type space
        i 8 bounds DO i c@ 0 <# # # #> type space LOOP
    8 +LOOP  r> base ! ;

: FORGET ( "name" -- )
    parse-name find-name dup 0= IF -13 throw THEN
    dup fence @ >real u< IF -15 throw THEN
    forget-word ;

\ The board answers for itself, not for the host: no floating point here.
: ENVIRONMENT? ( c-addr u -- false | i*x true )
    s" CORE" capscompare 0= IF true true ELSE false THEN ;

set-current
