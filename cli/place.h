#pragma once

#include "cli/module.h"
#include "cli/options.h"

#include <string>
#include <vector>

namespace cli {

// A reader and the card in it, as far as the answer to reset tells.
struct Reader {
    std::string name;
    bool card = false;
    std::string module;            // file name of the card's module; empty for an unknown card
    bool services = false;         // a national services card
    std::string state = "no card"; // "known card", "unknown card", "mute card", "unreachable", for a program
    std::string problem;           // why nothing is known of the card; empty when there is nothing to say
};

// The readers of this machine, in the crypto library's order. @throws Stop
[[nodiscard]] std::vector<Reader> list_readers();

// A field of a token's information, without what pads it.
[[nodiscard]] std::string token_text(const unsigned char* field, std::size_t size);

// Where the card to work with is.
struct Place {
    std::string reader;
    std::string module;      // file name
    std::string module_dir;  // absolute
    std::string module_path; // both
    bool services = false;
};

// Finds the card: the reader named, or the only one that holds a known card. No module is touched.
// @throws Stop
[[nodiscard]] Place find_place(const ReaderOptions& options);

// Finds the slot of a reader: the first whose description is part of the reader's name, which is also how the
// library will find it.
//
// @throws Stop when there is none, or when the library would take the card of another reader.
[[nodiscard]] CK_SLOT_ID slot_of(const Module& module, const std::string& reader);

} // namespace cli
