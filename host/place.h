#pragma once

#include "host/choice.h"
#include "host/module.h"
#include "host/readers.h"

#include <string>
#include <vector>

namespace zvhost {

// The readers of this machine, in the crypto library's order. @throws Error
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
// @throws Error
[[nodiscard]] Place find_place(const CardChoice& choice);

// Finds the slot of a reader: the first whose description is part of the reader's name, which is also how the
// library will find it.
//
// @throws Error when there is none, or when the library would take the card of another reader.
[[nodiscard]] CK_SLOT_ID slot_of(const Module& module, const std::string& reader);

} // namespace zvhost
