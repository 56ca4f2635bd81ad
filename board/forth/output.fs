\ What the board prints goes on the wire at once, also from a program that
\ never comes back to the prompt. OUT counts what was printed since the
\ last line break, as fig's listing words need.

variable out
: flush-out ( -- )  outfile-id flush-file drop ;
\ Characters after the last line break of the text, or -1 when it has none.
: after-break ( c-addr u -- n )
    dup >r BEGIN dup WHILE 1- 2dup + c@ dup 10 = swap 11 = or IF
        nip r> swap - 1- EXIT THEN REPEAT 2drop r> drop -1 ;
:noname ( c-addr u -- )
    2dup after-break dup 0< IF drop dup out +! ELSE out ! THEN
    defers type flush-out ; is type
:noname ( c -- )  dup 10 = over 11 = or IF 0 out ! ELSE 1 out +! THEN
    defers emit flush-out ; is emit
