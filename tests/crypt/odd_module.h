#pragma once

/* What the odd module does on which slot. */
enum Oddity {
    ODD_NUL_PADDED = 1, /* texts padded with NUL instead of blanks */
    ODD_FULL_SERIAL,
    ODD_NO_TOKEN,
    ODD_NULL_SESSION,
    ODD_NO_LOGIN_ENTRY,
    ODD_CLOSE_FAILS,
    ODD_CARD_GONE,
    ODD_PIN_LOCKED,
    ODD_PIN_EXPIRED,
    ODD_FINAL_TRY,
    ODD_NOW_LOCKED,
    ODD_HUGE_COUNT,
    ODD_ENDLESS_SEARCH,
    ODD_LENGTHS
};
