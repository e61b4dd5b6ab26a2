#include "host/card_session.h"

#include "host/remember.h"
#include "zvCrypt.h"

#include <algorithm>

namespace zvhost {
namespace {

void in_session(OpenedCard& card, Access access, const std::function<void(Session&)>& work) {
    const Module module(card.place.module_path);
    require_same_card(module, card.state);
    Session session(module, card.state.slot, access);
    session.log_in(card.pin);
    work(session);
}

} // namespace

void require_same_card(const Module& module, const CardState& state) {
    const CK_TOKEN_INFO token = module.token(state.slot);
    if (token_text(token.serialNumber, sizeof token.serialNumber) != state.serial)
        throw Error(Exit::failed, Sentence{"another-card", {}},
                    Advice{"insert-card", Sentence{"insert-same-card", {}}});
}

void require_same_card(const OpenedCard& card) {
    require_same_card(Module(card.place.module_path), card.state);
}

void with_session(OpenedCard& card, const std::function<void(Session&)>& work) {
    in_session(card, Access::reading, work);
}

void with_writing_session(OpenedCard& card, const std::function<void(Session&)>& work) {
    in_session(card, Access::writing, work);
}

CardNow card_now(const OpenedCard& card, CardView view) {
    remember_view(card.facts(), view);
    OnCard contents = view.contents();
    return {std::move(view), std::move(contents)};
}

CardNow card_now(OpenedCard& card) {
    // A session that a failed call left open would keep the module from being started.
    kvFinalize();
    try {
        CardView view;
        with_session(card, [&](const Session& session) { view = view_in(session); });
        return card_now(card, std::move(view));
    } catch (const Error& stop) {
        return {std::nullopt, {{}, stop.sentence, false}};
    }
}

bool CardNow::is_pending(const std::string& pair) const {
    if (!view) return false;
    const std::vector<std::string> pending = view->pending_pairs();
    return std::find(pending.begin(), pending.end(), pair) != pending.end();
}

} // namespace zvhost
