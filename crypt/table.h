#pragma once

#include "crypt/atr.h"

#include <string>
#include <vector>

namespace zvcrypt {

// A kind of card and the module that serves it.
struct CardEntry {
    PackedAtr pattern;
    std::string module;
    bool cns = false;
    bool touch_sign = false;
};

// A reader that exists in the configuration alone, with a card always in it.
struct SoftwareReader {
    std::string name;
    std::string atr;
};

struct Table {
    std::vector<CardEntry> cards;
    std::vector<SoftwareReader> readers;
};

enum class SoftwareReaders { refused, allowed };

// Reads a table (the form is told in zvCrypt.h). A malformed line is ZVC_ERR_CONFIG, with the file's name,
// the line and what is wrong with it.
[[nodiscard]] Table parse_table(const std::string& text, const std::string& file_name,
                                SoftwareReaders readers);

} // namespace zvcrypt
