#include "crypt/config.h"
#include "crypt/failure.h"
#include "crypt/pcsc.h"
#include "crypt/session.h"

#include <algorithm>
#include <cstring>

namespace zvcrypt {
namespace {

constexpr char SEPARATOR = '|';

std::vector<PcscReader> pcsc_readers_unless(bool others) {
    try {
        return pcsc_readers();
    } catch (const Failure&) {
        if (!others) throw;
        return {};
    }
}

// A card that answers is more likely the one meant than one that does not.
int rank(const PcscReader& reader) {
    return !reader.atr.empty() ? 0 : reader.has_card ? 1 : 2;
}

// Each name once: those with a card first, then the others, then the software readers. The list cannot hold a
// name with its separator in it; where that leaves none, it is told rather than taken for no reader.
std::vector<std::string> reader_names() {
    const auto software = load_configuration().readers;
    auto readers = pcsc_readers_unless(!software.empty());
    std::stable_sort(readers.begin(), readers.end(),
                     [](const PcscReader& a, const PcscReader& b) { return rank(a) < rank(b); });
    std::vector<std::string> names;
    std::string unlisted;
    for (const auto& reader : readers)
        if (reader.name.find(SEPARATOR) == std::string::npos)
            names.push_back(reader.name);
        else
            unlisted = reader.name;
    for (const auto& reader : software)
        if (std::find(names.begin(), names.end(), reader.name) == names.end()) names.push_back(reader.name);
    if (names.empty() && !unlisted.empty())
        throw Failure(ZVC_ERR_READER, "Il lettore \"" + unlisted +
                                          "\" ha nel nome il separatore '|' e non può "
                                          "essere elencato");
    return names;
}

} // namespace
} // namespace zvcrypt

int kvGetReader(char* list) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({list});
        list[0] = '\0';
        std::string text;
        for (const auto& name : zvcrypt::reader_names()) {
            if (text.size() + name.size() + 1 >= ZVC_READER_LIST_SIZE) break;
            text += name + zvcrypt::SEPARATOR;
        }
        std::memcpy(list, text.c_str(), text.size() + 1);
    });
}
