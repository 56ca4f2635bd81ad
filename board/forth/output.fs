\ What the board prints goes on the wire at once, also from a program that
\ never comes back to the prompt.

: flush-out ( -- )  outfile-id flush-file drop ;
:noname ( c-addr u -- )  defers type flush-out ; is type
:noname ( c -- )  defers emit flush-out ; is emit
