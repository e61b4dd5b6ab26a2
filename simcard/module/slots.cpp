#include "simcard/module/slots.h"

#include "simcard/common/card_folder.h"
#include "simcard/common/problem.h"
#include "simcard/common/softhsm.h"
#include "zvConstants.h"

#include <algorithm>
#include <utility>

namespace simcard {
namespace {

constexpr std::size_t MOST_SLOTS = ZV_LAST_SLOT + 1;

#ifdef __APPLE__
auto changed_at(const struct stat& file) {
    return std::pair(file.st_mtimespec.tv_sec, file.st_mtimespec.tv_nsec);
}
#else
auto changed_at(const struct stat& file) {
    return std::pair(file.st_mtim.tv_sec, file.st_mtim.tv_nsec);
}
#endif

} // namespace

Slot::Slot(Card card, std::optional<CK_SLOT_ID> token) : card_(std::move(card)), token_(token) {
    static_cast<void>(file_changed());
}

bool Slot::file_changed() {
    struct stat now {};
    if (::stat((card_.folder / CARD_FILE).c_str(), &now) != 0) return true;
    const bool same = now.st_ino == seen_.st_ino && changed_at(now) == changed_at(seen_);
    seen_ = now;
    return !same;
}

bool Slot::was_taken_out() {
    if (!file_changed()) return false;
    const bool was_in = card_.inserted;
    const unsigned long insertions = card_.insertions;
    try {
        card_ = load_card(card_.folder);
    } catch (const CardProblem&) {
        card_.inserted = false;
    }
    return was_in && (!card_.inserted || card_.insertions != insertions);
}

std::vector<Slot> make_slots(const std::vector<Card>& cards, const SoftHsm& hsm) {
    std::vector<Slot> slots;
    for (std::size_t i = 0; i < std::min(cards.size(), MOST_SLOTS); ++i)
        slots.emplace_back(cards[i], hsm.slot_of(cards[i].token));
    return slots;
}

} // namespace simcard
