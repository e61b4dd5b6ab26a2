#include "host/slot_choice.h"

#include "host/missing.h"
#include "zvConstants.h"

#include <algorithm>

namespace zvhost {
namespace {

// Slots whose description is part of a reader's name, with the length of the description.
using Matches = std::vector<std::pair<CK_SLOT_ID, std::size_t>>;

// A module says no more than 64 characters of a reader's name. Slots of one card are no matter: modules show one
// for each of its PINs, and the first is the one that everybody takes.
void refuse_alike(const SerialOf& serial_of, const Matches& matching, std::size_t longest,
                  const std::string& reader) {
    std::vector<std::string> serials;
    for (const auto& [slot, length] : matching)
        if (length == longest) serials.push_back(serial_of(slot));
    const bool one_card = std::all_of(serials.begin(), serials.end(), [&](const std::string& serial) {
        return !serial.empty() && serial == serials.front();
    });
    if (serials.size() > 1 && !one_card)
        throw Error(Exit::refused,
                    Sentence{"readers-alike", {{"characters", long{ZV_DESCRIPTION_MAX}}, {"reader", reader}}},
                    Advice{"remove-other-card", Sentence{"remove-other-card", {}}});
}

} // namespace

CK_SLOT_ID choose_slot(const std::vector<NamedSlot>& slots, const std::string& reader,
                       const SerialOf& serial_of) {
    Matches matching;
    for (const NamedSlot& slot : slots) {
        const std::string description = slot.description.substr(0, ZV_DESCRIPTION_MAX);
        if (!description.empty() && reader.find(description) != std::string::npos)
            matching.emplace_back(slot.id, description.size());
    }
    if (matching.empty())
        throw Missing({Exit::failed, Sentence{"module-without-card", {{"reader", reader}}},
                       Advice{"insert-card", Sentence{"insert-card-again", {}}}});
    const auto best = std::max_element(matching.begin(), matching.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    refuse_alike(serial_of, matching, best->second, reader);
    if (best->second > matching.front().second)
        throw Error(Exit::refused, Sentence{"reader-inside-name", {{"reader", reader}}},
                    Advice{"remove-other-card", Sentence{"remove-other-card", {}}});
    return matching.front().first;
}

} // namespace zvhost
