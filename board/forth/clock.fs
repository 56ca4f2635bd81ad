\ The board's real-time clock and the words of the start-up line.
\ Set with  DECIMAL dd mm yyyy NOW  hh mm ss HRS  (a year first, as in
\ yyyy mm dd NOW, is accepted too); the clock then runs with the host's.

variable clock-base    \ board seconds since 1 Jan 1970 when it was set
variable clock-set-at  \ host seconds at that moment
variable clock-written \ W! copied the clock into the board's clock chip

: host-seconds ( -- u )  utime 1000000 um/mod nip ;
: board-seconds ( -- u )  host-seconds clock-set-at @ - clock-base @ + ;
: set-board-seconds ( u -- )  clock-base !  host-seconds clock-set-at ! ;

\ Days since 1 Jan 1970 of a civil date (proleptic Gregorian).
: days-from-civil ( d m y -- days )
    over 3 < IF 1- THEN
    dup 400 / >r                         ( d m y ) ( r: era )
    r@ 400 * -                           ( d m yoe )
    swap dup 2 > IF 3 - ELSE 9 + THEN    ( d yoe mp )
    153 * 2 + 5 / rot + 1-               ( yoe doy )
    over 365 * + over 4 / + swap 100 / - ( doe )
    r> 146097 * + 719468 - ;

: civil-from-days { days -- d m y }
    days 719468 + { z }
    z 146097 / { era }
    z era 146097 * - { doe }
    doe doe 1460 / - doe 36524 / + doe 146096 / - 365 / { yoe }
    doe yoe 365 * yoe 4 / + yoe 100 / - - { doy }
    doy 5 * 2 + 153 / { mp }
    doy mp 153 * 2 + 5 / - 1+
    mp 10 < IF mp 3 + ELSE mp 9 - THEN
    yoe era 400 * + over 3 < IF 1+ THEN ;

: check-range ( n lo hi -- n )  >r >r dup r> r> 1+ within 0= IF -24 throw THEN ;

: day-seconds ( -- u )  board-seconds 86400 mod ;
: day-number ( -- u )  board-seconds 86400 / ;

: NOW ( d m y -- )
    2 pick 31 > IF swap rot THEN   \ y m d becomes d m y
    dup 100 < IF 2000 + THEN
    1984 2099 check-range >r 1 12 check-range >r 1 31 check-range r> r>
    days-from-civil 86400 * day-seconds + set-board-seconds ;

: HRS ( h m s -- )
    0 59 check-range swap 0 59 check-range 60 * + swap 0 23 check-range 3600 * +
    day-number 86400 * + set-board-seconds ;

: time&date ( -- s m h d mo y )
    day-seconds 60 /mod 60 /mod day-number civil-from-days ;

: .2 ( n -- )  s>d <# # # #> type ;
: .CLOCK ( -- )
    base @ >r decimal
    time&date rot .2 [char] / emit swap .2 [char] / emit 0 .r space
    .2 [char] : emit .2 [char] : emit .2 space
    r> base ! ;

kvr4410? [IF]
: W! ( -- )  clock-written on ;
[THEN]
this-board ans-4410 = [IF]
: START ( -- ) ;
[THEN]
fig? [IF]
: IBM ( -- ) ;
[THEN]

host-seconds set-board-seconds
