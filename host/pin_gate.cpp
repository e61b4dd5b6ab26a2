#include "host/pin_gate.h"

#include "host/about_card.h"
#include "host/missing.h"
#include "host/refused_pin.h"
#include "zvConstants.h"

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace zvhost {
namespace {

void refuse_risky_try(const CardState& state, bool final_try) {
    if (state.pin == PinState::locked)
        throw Error(Exit::refused, Sentence{"pin-locked-already", {}},
                    Advice{"unlock", Sentence{"unlock-first", {}}});
    if (state.pin == PinState::last_try && !final_try)
        throw Error(Exit::refused, Sentence{"pin-final-try", {}},
                    Advice{"final-try", Sentence{"final-try", {}}});
}

// What the card says of its PIN after a wrong one; none when it cannot be asked.
std::optional<PinState> pin_now(const Module& module, CK_SLOT_ID slot, bool locked) {
    try {
        const PinState now = pin_state(module.token(slot).flags);
        return locked ? PinState::locked : now;
    } catch (const Error&) {
        return std::nullopt;
    }
}

Sentence tries_left(std::optional<PinState> pin) {
    if (!pin) return Sentence{"pin-tries-not-asked", {}};
    const Sentence tries = tries_told(*pin);
    return tries.empty() ? Sentence{"pin-tries-untold", {}} : tries;
}

Error wrong_pin(const Module& module, const OpenedCard& card, CK_RV result) {
    bool locked = result == CKR_PIN_LOCKED;
    CardState state = card.state;
    state.pin = pin_now(module, state.slot, locked);
    locked = locked || state.pin == PinState::locked;
    Error stop(
        Exit::failed,
        {"pin-wrong", {{"reason", module_reason(result)}, {"tries", std::vector{tries_left(state.pin)}}}},
        locked ? Advice{"unlock", Sentence{"unlock", {}}} : check_pin());
    stop.tell_card(facts_of(card.place, std::move(state)));
    return stop;
}

// The login proves the PIN; a card that stays open takes any for the right one.
void prove_pin(const Module& module, Session& session, OpenedCard& card, PinSource& source) {
    const CK_RV result = session.try_login(card.pin);
    if (result == CKR_OK) return;
    if (result == CKR_PIN_INCORRECT || result == CKR_PIN_LOCKED) {
        source.refused();
        throw wrong_pin(module, card, result);
    }
    throw Error(Exit::failed, Sentence{"pin-unchecked", {{"reason", module_reason(result)}}});
}

// Reads what the card holds in the session in which the PIN is proved.
// @return why that cannot be read, once it is
std::optional<Error> look(const Module& module, OpenedCard& card, PinSource& source) {
    Session session(module, card.state.slot);
    prove_pin(module, session, card, source);
    try {
        card.view = view_in(session);
    } catch (const Error& unread) {
        return unread;
    }
    return std::nullopt;
}

// The same for every user, and for every way to the module, in which a slot may have other numbers.
// (FNV-1a: the name of a file is no secret.)
std::string lock_of(const Place& place, const CardState& state) {
    std::error_code none;
    const std::string module = std::filesystem::weakly_canonical(place.module_path, none);
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : fmt::format("{}\n{}", module, state.serial))
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return fmt::format("card-{:016x}", hash);
}

void refuse_series(const CardState& state) {
    if (state.serial.starts_with(ZV_REFUSED_SERIES))
        throw Error(Exit::refused, Sentence{"card-series-refused", {{"series", ZV_REFUSED_SERIES}}});
}

void refuse_slot(const CardState& state) {
    if (state.slot > ZV_LAST_SLOT)
        throw Error(Exit::refused,
                    Sentence{"slot-too-high",
                             {{"slot", static_cast<long>(state.slot)}, {"last", long{ZV_LAST_SLOT}}}});
}

// People take their time: meanwhile the module is let go, and the card that gets the PIN is looked at again.
void ask_pin(OpenedCard& card, std::unique_ptr<Module>& module, PinSource& source) {
    module.reset();
    card.pin = source.ask(card.facts());
    check_pin_form(card.pin);
    module = std::make_unique<Module>(card.place.module_path);
    const CardState now = card_state(*module, card.place);
    if (now.slot != card.state.slot || now.serial != card.state.serial)
        throw Error(Exit::refused, Sentence{"pin-other-card", {}});
    refuse_risky_try(now, source.final_try());
}

// What is known of the card is added to `facts` as soon as it is.
OpenedCard open_untouched(const CardChoice& choice, PinSource& source, Use use,
                          std::optional<CardFacts>& facts) {
    std::optional<Pin> early = source.at_once();
    if (early) check_pin_form(*early);
    auto [place, state, module] = find_card(choice, facts);
    refuse_series(state);
    if (use == Use::changing) refuse_slot(state);
    refuse_risky_try(state, source.final_try());
    OpenedCard card{std::move(place), std::move(state), {}, {}, {}};
    if (use == Use::changing) card.lock.emplace(lock_of(card.place, card.state), "busy-card");
    if (early)
        card.pin = std::move(*early);
    else
        ask_pin(card, module, source);
    const std::optional<Error> unread = look(*module, card, source);
    module.reset();
    if (unread) throw with_card(card, *unread);
    return card;
}

// Modules that know nothing of the card's memory say so, or 0 of all of it.
std::optional<std::size_t> room_on(const CK_TOKEN_INFO& token) {
    const bool unknown = token.ulFreePublicMemory == CK_UNAVAILABLE_INFORMATION ||
                         (token.ulFreePublicMemory == 0 && token.ulTotalPublicMemory == 0);
    if (unknown) return std::nullopt;
    return token.ulFreePublicMemory;
}

} // namespace

CardState card_state(CK_SLOT_ID slot, const CK_TOKEN_INFO& token) {
    CardState state;
    state.slot = slot;
    state.label = token_text(token.label, sizeof token.label);
    state.serial = token_text(token.serialNumber, sizeof token.serialNumber);
    state.room = room_on(token);
    state.pin = pin_state(token.flags);
    state.keypad = (token.flags & CKF_PROTECTED_AUTHENTICATION_PATH) != 0;
    return state;
}

CardState card_state(const Module& module, const Place& place) {
    const CK_SLOT_ID slot = slot_of(module, place.reader);
    return card_state(slot, module.token(slot));
}

FoundCard find_card(const CardChoice& choice, std::optional<CardFacts>& facts) {
    const auto wait = choice.wait;
    for (;;)
        try {
            Place place = find_place(choice);
            facts = facts_of(place, {});
            auto module = std::make_unique<Module>(place.module_path);
            CardState state = card_state(*module, place);
            facts = facts_of(place, state);
            return {std::move(place), std::move(state), std::move(module)};
        } catch (const Missing& missing) {
            if (!wait || !wait(missing.sentence)) throw;
        }
}

CardFacts facts_of(const Place& place, std::optional<CardState> state) {
    return {place.reader, place.module_path, place.services, std::move(state)};
}

CardFacts OpenedCard::facts() const {
    return facts_of(place, state);
}

void require_alone(const OpenedCard& card) {
    if (card.lock && !card.lock->holds())
        throw Error(Exit::refused, Sentence{"lock-gone", {}}, Advice{"repeat", Sentence{"run-again", {}}});
}

OpenedCard open_card(const CardChoice& choice, PinSource& source, Use use) {
    std::optional<CardFacts> facts;
    try {
        return open_untouched(choice, source, use, facts);
    } catch (Error& stop) {
        if (facts) stop.tell_card(*facts);
        if (stop.exit == Exit::failed && !stop.card) stop.card = OnCard{{}, {}, true};
        throw;
    }
}

} // namespace zvhost
