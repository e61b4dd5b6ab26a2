#include "host/objects_removed.h"

#include "zvConstants.h"

#include <algorithm>

namespace zvhost {
namespace {

bool is_same(const CardObject& one, const CardObject& other) {
    return one.type == other.type && one.id == other.id && one.value == other.value;
}

// Another object of the same class and identifier means that the card is not what was planned for.
void require_known(const CardView& view, const std::vector<CardObject>& objects) {
    const auto known = [&](const CardObject& there) {
        return std::any_of(objects.begin(), objects.end(),
                           [&](const CardObject& one) { return is_same(one, there); });
    };
    for (const CardObject& there : view.objects())
        for (const CardObject& one : objects)
            if (there.type == one.type && there.id == one.id && !known(there))
                throw Error(Exit::failed, {"removal-not-as-planned", {{"id", one.id}}});
}

// Removes objects, and looks at what is left.
CardNow removed(OpenedCard& card, const std::function<void(Session&, const CardView&)>& remove) {
    std::optional<CardNow> now;
    with_writing_session(card, [&](Session& session) {
        remove(session, view_in(session));
        try {
            now = card_now(card, view_in(session));
        } catch (const Error&) {
            // A card that cannot be read while it is open for changes is opened once more for the look.
        }
    });
    return now ? std::move(*now) : card_now(card);
}

} // namespace

CardNow remove_objects(OpenedCard& card, const std::vector<CardObject>& objects) {
    return removed(card, [&](Session& session, const CardView& view) {
        require_known(view, objects);
        for (const CardObject& one : objects)
            for (const CardObject& there : view.objects())
                if (is_same(one, there)) session.destroy(there.handle);
    });
}

CardNow remove_mark(OpenedCard& card) {
    return removed(card, [](Session& session, const CardView& view) {
        for (const CardObject& there : view.objects())
            if (there.type == CKO_DATA && there.label == ZV_PENDING_MARKER) session.destroy(there.handle);
    });
}

} // namespace zvhost
