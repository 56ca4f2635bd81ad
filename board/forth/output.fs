\ What the board prints goes on the wire at once, also from a program that
\ never comes back to the prompt. OUT counts what was printed since the
\ last line break, as fig's listing words need.

variable out
: flush-out ( -- )  outfile-id flush-file drop ;
:noname ( c-addr u -- )  dup out +!  defers type flush-out ; is type
:noname ( c -- )  dup 10 = over 11 = or IF 0 out ! ELSE 1 out +! THEN
    defers emit flush-out ; is emit
