/**
 * The exit codes of the programs, for who starts them. C++.
 *
 * From 10 on they answer how it stands with a card; where several hold, expired comes before under_way, and that before
 * due.
 */
#ifndef ZV_EXIT_CODES_H
#define ZV_EXIT_CODES_H

namespace zv {

enum class ExitCode : int {
    done = 0,
    failed = 1,
    refused = 2, ///< or mistyped: no PIN try was spent and nothing on a card was changed
    nothing_due = 3,
    due = 10,          ///< a certificate ends soon
    expired = 11,      ///< a certificate has ended
    under_way = 12,    ///< keys wait for their certificate
    nothing_there = 13 ///< there is no certificate and no key that waits for one
};

} // namespace zv

#endif
