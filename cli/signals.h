#pragma once

namespace cli {

/**
 * Lets Ctrl-C, a hang-up and a request to terminate wait until the program ends by itself.
 *
 * Called before the card is changed: a program that stops between the removal of a certificate and the
 * storing of its successor would leave neither. Ctrl-\ still ends a module that never answers.
 */
void hold_signals();

} // namespace cli
