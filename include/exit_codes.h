/**
 * The exit codes of the programs, for who starts them. C++.
 *
 * 10 (due), 11 (expired), 12 (a request is under way) and 13 (nothing on the card) are reserved for the answers about
 * how it stands with a card.
 */
#ifndef ZV_EXIT_CODES_H
#define ZV_EXIT_CODES_H

namespace zv {

enum class ExitCode : int {
    done = 0,
    failed = 1,
    refused = 2, ///< or mistyped: no PIN try was spent and nothing on a card was changed
    nothing_due = 3
};

} // namespace zv

#endif
