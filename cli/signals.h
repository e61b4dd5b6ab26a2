#pragma once

namespace cli {

// Lets Ctrl-C, Ctrl-\, a hang-up and a request to terminate wait until the step is done that the card is in. One that
// comes is noticed, and answered at once that this is so.
//
// Called before the card is changed: a program that stops between the removal of a certificate and the installing of
// its successor would leave neither. A module that never answers is ended with SIGKILL.
void hold_signals();

// Has a write fail that nobody reads, or that passes the largest size of a file, instead of ending the program.
void let_writes_fail();

} // namespace cli
