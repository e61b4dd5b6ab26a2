#include "config.h"
#include "failure.h"
#include "pcsc.h"

#include <algorithm>
#include <cstring>

namespace zvcrypt {
namespace {

std::vector<PcscReader> pcscReadersUnless(bool others) {
    try {
        return pcscReaders();
    } catch (const Failure&) {
        if (!others) throw;
        return {};
    }
}

// Each name once: those with a card first, then the others, then the software readers.
std::vector<std::string> readerNames() {
    const auto software = loadConfiguration().readers;
    auto readers = pcscReadersUnless(!software.empty());
    std::stable_partition(readers.begin(), readers.end(),
                          [](const PcscReader& reader) { return reader.hasCard; });
    std::vector<std::string> names;
    for (const auto& reader : readers)
        names.push_back(reader.name);
    for (const auto& reader : software)
        if (std::find(names.begin(), names.end(), reader.name) == names.end()) names.push_back(reader.name);
    return names;
}

} // namespace
} // namespace zvcrypt

int kvGetReader(char* list) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({list});
        list[0] = '\0';
        std::string text;
        for (const auto& name : zvcrypt::readerNames()) {
            if (text.size() + name.size() + 1 >= ZVC_READER_LIST_SIZE) break;
            text += name + "|";
        }
        std::memcpy(list, text.c_str(), text.size() + 1);
    });
}
