#include "host/place.h"

#include "host/advice.h"
#include "host/error.h"
#include "host/library_text.h"
#include "host/missing.h"
#include "host/module_folder.h"
#include "host/slot_choice.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace zvhost {
namespace {

Reader look_at(const std::string& name) {
    Reader reader;
    reader.name = name;
    std::string writable = name;
    std::array<char, ZVC_MODULE_NAME_SIZE> module{};
    const int code = kvGetPKCS11FromATR(writable.data(), module.data());
    if (code == ZVC_ERR_NO_CARD) return reader;
    if (code == ZVC_ERR_MUTE_CARD) {
        reader.card = true;
        reader.state = "mute card";
        reader.problem = {"card-mute", {}};
        return reader;
    }
    if (code != ZVC_OK) {
        reader.state = "unreachable";
        reader.problem = {"reader-unreachable", {{"reason", crypto_reason(code)}}};
        return reader;
    }
    reader.card = true;
    reader.module = module.data();
    reader.services = kvIsCNSINCARD() != 0;
    reader.state = reader.module.empty() ? "unknown card" : "known card";
    if (reader.module.empty()) reader.problem = {"card-unknown", {}};
    return reader;
}

std::string names(const std::vector<Reader>& readers) {
    std::string text;
    for (const Reader& reader : readers)
        text += fmt::format("{}\"{}\"", text.empty() ? "" : ", ", reader.name);
    return text;
}

std::vector<std::string> names_of(const std::vector<Reader>& readers) {
    std::vector<std::string> list(readers.size());
    std::transform(readers.begin(), readers.end(), list.begin(),
                   [](const Reader& reader) { return reader.name; });
    return list;
}

const Reader& the_one_named(const std::vector<Reader>& readers, const std::string& name) {
    const auto found = std::find_if(readers.begin(), readers.end(),
                                    [&](const Reader& reader) { return reader.name == name; });
    if (found == readers.end())
        throw Missing(
            {Exit::refused, Sentence{"reader-unknown", {{"reader", name}, {"readers", names(readers)}}},
             Advice{"reader", Sentence{"reader-whole-name", {}}, {{"readers", names_of(readers)}}}});
    return *found;
}

const Reader& the_only_one(const std::vector<Reader>& readers) {
    std::vector<Reader> known;
    std::copy_if(readers.begin(), readers.end(), std::back_inserter(known),
                 [](const Reader& reader) { return !reader.module.empty(); });
    if (known.size() > 1)
        throw Error(Exit::refused, Sentence{"readers-several", {{"readers", names(known)}}},
                    Advice{"reader", Sentence{"reader-which", {}}, {{"readers", names_of(known)}}});
    if (known.size() == 1) return the_one_named(readers, known.front().name);
    const auto card = std::find_if(readers.begin(), readers.end(), [](const Reader& r) { return r.card; });
    return card != readers.end() ? *card : readers.front();
}

Error unusable(const Reader& reader) {
    Error stop(Exit::refused,
               {"card-unusable", {{"reader", reader.name}, {"problem", std::vector{reader.problem}}}});
    if (reader.state == "unknown card") stop.advice.push_back(enter_card());
    if (reader.state == "mute card") stop.advice.push_back({"insert-card", Sentence{"turn-card", {}}});
    stop.tell_card({reader.name, {}, false, {}});
    return stop;
}

void require_known_card(const Reader& reader) {
    if (!reader.module.empty()) return;
    if (!reader.card && reader.problem.empty())
        throw Missing({Exit::refused, Sentence{"no-card", {{"reader", reader.name}}},
                       Advice{"insert-card", Sentence{"insert-card", {}}}});
    if (reader.state == "mute card") throw Missing(unusable(reader));
    throw unusable(reader);
}

bool contains(const std::string& text, const std::string& part) {
    return !part.empty() && text.find(part) != std::string::npos;
}

Error listing_stop(int code) {
    Error stop(Exit::refused, Sentence{"readers-unlisted", {{"reason", crypto_reason(code)}}});
    if (code == ZVC_ERR_NO_SERVICE) stop.advice.push_back(start_service());
    stop.code = code;
    return stop;
}

} // namespace

std::string token_text(const unsigned char* field, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(field), size);
    text.resize(text.find('\0') == std::string::npos ? size : text.find('\0'));
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

std::vector<Reader> list_readers() {
    std::array<char, ZVC_READER_LIST_SIZE> list{};
    const int code = kvGetReader(list.data());
    if (code != ZVC_OK) throw listing_stop(code);
    std::vector<Reader> readers;
    const std::string text = list.data();
    for (std::size_t at = 0, end = 0; (end = text.find('|', at)) != std::string::npos; at = end + 1)
        readers.push_back(look_at(text.substr(at, end - at)));
    return readers;
}

Place find_place(const CardChoice& choice) {
    const std::vector<Reader> readers = list_readers();
    if (readers.empty())
        throw Missing(
            {Exit::refused, Sentence{"no-reader", {}}, Advice{"plug-reader", Sentence{"plug-reader", {}}}});
    const Reader& reader =
        choice.reader.empty() ? the_only_one(readers) : the_one_named(readers, choice.reader);
    require_known_card(reader);
    if (contains(reader.name, ZV_MODULE_PATH_MARK))
        throw Error(Exit::refused, Sentence{"reader-unusable", {{"reader", reader.name}}});
    const auto folder = folder_of_module(reader.module, choice.module_dir);
    // The last reader looked at need not be this one, and the library asks the crypto library again anyway.
    return {reader.name, reader.module, folder, folder / reader.module, reader.services};
}

CK_SLOT_ID slot_of(const Module& module, const std::string& reader) {
    std::vector<NamedSlot> slots;
    for (const CK_SLOT_ID slot : module.slots())
        slots.push_back({slot, module.description(slot)});
    return choose_slot(slots, reader, [&](CK_SLOT_ID slot) {
        const CK_TOKEN_INFO token = module.token(slot);
        return token_text(token.serialNumber, sizeof token.serialNumber);
    });
}

} // namespace zvhost
