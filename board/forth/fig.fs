\ fig-FORTH where it differs from the host's ANS Forth. Only loaded on the
\ fig-FORTH boards; what is not here the host Forth already does as fig does.
\ Header layout in fig's terms: the name field and the link field are both
\ the host's name token (its first cell links to the word before, as fig's
\ link field holds the name field of the word before), the code field is the
\ execution token and the parameter field its body.

\ fig's numbered messages; ERROR n throws -1000 - n unless the board has an
\ error code of its own for it.
: fig-code ( n -- code )
    CASE 1 OF -4 ENDOF  2 OF -8 ENDOF  7 OF -3 ENDOF  17 OF -14 ENDOF
         19 OF -22 ENDOF  21 OF -15 ENDOF  dup -1000 swap - swap ENDCASE ;

: fig-xt ( "name" -- xt )  parse-name find-name dup 0= IF -13 throw THEN name>int ;
: user-area ( -- addr )  $0180 ;   \ board RAM of the user variables
: board-origin ( -- addr )  this-board fig-6630 = IF $0800 ELSE $0100 THEN ;
\ Two disk buffers below the dictionary (the 6630's start-up line blanks them).
: first-buffer ( -- addr )  this-board fig-6630 = IF $A000 ELSE $2A00 THEN ;
variable fig-offset
variable fig-prev
variable fig-csp
variable fig-warning
variable fig-width  31 fig-width !
variable fig-voc-link
variable fig-r#
variable fig-fld
variable tib-address

get-current dialect-words set-current  dialect-words >order

: '  ( -- pfa )  fig-xt >body  state @ IF postpone literal THEN ; immediate
: CFA ( pfa -- cfa )  body> ;
: LFA ( pfa -- lfa )  body> >name ;
: NFA ( pfa -- nfa )  body> >name ;
: PFA ( nfa -- pfa )  name>int >body ;
: LATEST ( -- nfa )  last @ ;
: ID. ( nfa -- )  name>string type space ;
: TRAVERSE ( addr1 n -- addr2 )
    0< IF   \ from the last character back to the count
        dup BEGIN 1- dup aligned over = over cell+ @ lcount-mask and 2 pick + 2 cells + 1- 3 pick = and UNTIL nip
    ELSE dup cell+ @ lcount-mask and + 2 cells + 1- THEN ;
\ A hidden header links to its word list with the low bit set, as the
\ host's own does until ; reveals it.
: SMUDGE ( -- )
    last @ dup @ 1 and IF drop reveal EXIT THEN
    dup @ current @ wordlist-id !  current @ 1 or swap !  current @ rehash ;

\ A vocabulary searched from name field nfa on.
: (FIND) ( addr1 nfa -- pfa b tf | ff )
    BEGIN dup WHILE
        over count 2 pick name>string capscompare 0= IF
            nip dup name>int >body swap cell+ c@ true EXIT THEN
        @ REPEAT nip ;
: -FIND ( -- pfa b tf | ff )  bl word  context @ wordlist-id @ (FIND) ;
: COMPILE ( "name" -- )  postpone postpone ; immediate compile-only
: DLITERAL ( d -- )  state @ IF postpone 2literal THEN ; immediate
' ?branch alias 0BRANCH
: HLD ( -- addr )  holdptr ;

: <BUILDS ( "name" -- )  create ;
: -DUP ( n -- n | n n )  ?dup ;
: ?TERMINAL ( -- f )  key? ;
: VARIABLE ( n "name" -- )  create , ;
: USER ( n "name" -- )  create , DOES> @ user-area + ;
: WORD ( c -- )  word drop ;
: NUMBER ( addr -- d )  count s>number? 0= IF -13 throw THEN ;
: (NUMBER) ( d1 addr1 -- d2 addr2 )  1+ 255 >number drop ;
: DIGIT ( c n1 -- n2 tf | ff )
    swap [char] 0 - dup 9 > IF 7 - dup 10 < IF drop -1 THEN THEN
    tuck u> IF true ELSE drop false THEN ;
: ENCLOSE ( addr1 c -- addr1 n1 n2 n3 )
    >r dup BEGIN dup c@ r@ = WHILE 1+ REPEAT over -   ( addr1 n1 )
    2dup + dup c@ 0= IF r> 2drop dup 1+ over EXIT THEN
    BEGIN dup c@ dup r@ <> swap 0<> and WHILE 1+ REPEAT r> drop
    dup c@ 0<> 1 and >r  2 pick -  dup r> + ;
: LEAVE ( -- )  r> r> r> drop dup 1+ >r >r >r ;
: R ( -- n )  postpone r@ ; immediate compile-only
: MINUS ( n1 -- n2 )  negate ;
: DMINUS ( d1 -- d2 )  dnegate ;
: +- ( n1 n2 -- n3 )  0< IF negate THEN ;
: D+- ( d1 n -- d2 )  0< IF dnegate THEN ;
: S->D ( n -- d )  s>d ;
: U* ( u1 u2 -- ud )  um* ;
: U/ ( ud u1 -- u2 u3 )  um/mod ;
: M/ ( d n1 -- n2 n3 )  sm/rem ;
: M/MOD ( ud1 u2 -- u3 ud4 )  >r 0 r@ um/mod r> swap >r um/mod r> ;
: 2+ ( n1 -- n2 )  2 + ;
0 constant 0  1 constant 1  2 constant 2  3 constant 3
: TOGGLE ( addr b -- )  over c@ xor swap c! ;
: END ( addr n -- )  postpone until ; immediate compile-only
: BACK ( addr -- )  <resolve ;
: ;S ( -- )  postpone exit ; immediate compile-only
: ;CODE ( -- )  -21 throw ; immediate   \ no machine code on this board
: (;CODE) ( -- )  -21 throw ;
: TASK ( -- ) ;
: MON ( -- )  COLD ;
: ABORT ( -- )  list-cr sign-on-text type  -1 throw ;
: (ABORT) ( -- )  ABORT ;
: SP! ( -- )  sp0 @ sp! ;
: RP! ( -- )  -56 throw ;
: S0 ( -- addr )  sp0 ;
: IN ( -- addr )  >in ;
: TIB ( -- addr )  tib tib-address !  tib-address ;
: QUERY ( -- )  read-line 0 >in ! ;
: +ORIGIN ( n -- addr )  board-origin + ;

: MESSAGE ( n -- )  fig-code error-text type ;
: ERROR ( n -- )  fig-code throw ;
: ?ERROR ( f n -- )  swap IF ERROR ELSE drop THEN ;
: ?COMP ( -- )  state @ 0= 17 ?ERROR ;
: ?EXEC ( -- )  state @ 18 ?ERROR ;
: ?PAIRS ( n1 n2 -- )  - 19 ?ERROR ;
: !CSP ( -- )  sp@ fig-csp ! ;
: ?CSP ( -- )  sp@ fig-csp @ - 20 ?ERROR ;
: ?STACK ( -- )  depth 0< 1 ?ERROR ;
: ?LOADING ( -- )  blk @ 0= 22 ?ERROR ;
: CSP ( -- addr )  fig-csp ;
: WARNING ( -- addr )  fig-warning ;
: WIDTH ( -- addr )  fig-width ;
: VOC-LINK ( -- addr )  fig-voc-link ;
: R# ( -- addr )  fig-r# ;
: FLD ( -- addr )  fig-fld ;

\ Vocabularies chain to FORTH, the board's own words.
: FORTH ( -- )  rom 1 set-order ;
: VOCABULARY ( "name" -- )
    create wordlist dup , fig-voc-link @ , fig-voc-link !
    DOES> @ rom swap 2 set-order ;

\ The disk: blocks of the host's block file, one screen a block.
: B/BUF ( -- n )  1024 ;
: B/SCR ( -- n )  1 ;
: FIRST ( -- n )  first-buffer ;
: LIMIT ( -- n )  first-buffer 2048 + ;
: PREV ( -- addr )  fig-prev ;
: USE ( -- addr )  fig-prev ;
: +BUF ( addr1 -- addr2 f )  1024 + dup LIMIT = IF drop FIRST THEN dup fig-prev @ <> ;
: OFFSET ( -- addr )  fig-offset ;
: DR0 ( -- )  0 fig-offset ! ;
: DR1 ( -- )  2000 fig-offset ! ;
: BLOCK ( n -- addr )  fig-offset @ + block ;
: BUFFER ( n -- addr )  fig-offset @ + buffer ;
: R/W ( addr blk f -- )
    IF BLOCK swap 1024 move ELSE BUFFER 1024 move update save-buffers THEN ;
: (LINE) ( n1 n2 -- addr count )  BLOCK swap 64 * + 64 ;
: .LINE ( line scr -- )  (LINE) -trailing type ;
: LIST ( n -- )
    dup scr !  list-cr ." SCR # " dup .
    16 0 DO list-cr i 2 .r space i over .LINE LOOP drop ;
: INDEX ( from to -- )  1+ swap DO list-cr i 3 .r space 0 i .LINE LOOP ;
: TRIAD ( scr -- )  3 / 3 * dup 3 + swap DO i LIST LOOP ;
: LOAD ( n -- )  fig-offset @ + load ;

previous set-current
