#pragma once

#include "zvRenew.h"

// The key pair that an unfinished request left on the card.
namespace zv {

// What a search for it came to, by the codes that the log shows.
enum class PairSearch { found = 0, failed = ZV_FAILED, no_private_key = 100 };

struct PendingPair {
    PairSearch search = PairSearch::failed;
    char id[256] = ""; // of the private key
};

// Looks for keys whose identifier contains the pending one; hPrivateKey and hPublicKey are the last of each kind.
[[nodiscard]] PendingPair find_pending_pair(bool report_missing);

// Looks for the private key with exactly that identifier: another one is none.
[[nodiscard]] PairSearch find_pair_again(const char* id);

} // namespace zv
