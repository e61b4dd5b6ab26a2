#pragma once

namespace cli {

// Lets Ctrl-C, Ctrl-\, a hang-up and a request to terminate wait until the program ends by itself.
//
// Called before the card is changed: a program that stops between the removal of a certificate and the installing of
// its successor would leave neither. A module that never answers is ended with SIGKILL.
void hold_signals();

// Has a write fail that nobody reads, or that passes the largest size of a file, instead of ending the program.
void let_writes_fail();

} // namespace cli
