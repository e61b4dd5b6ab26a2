#include "host/pin_gate.h"

#include "host/error.h"
#include "host/front.h"
#include "host/library_text.h"
#include "host/missing.h"
#include "host/refused_pin.h"
#include "zvCrypt.h"
#include "zvRenew.h"

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
std::optional<PinState> pin_now(const Place& place, bool locked) {
    try {
        const CardState now = card_state(place);
        return locked ? PinState::locked : now.pin;
    } catch (const Error&) {
        return std::nullopt;
    }
}

Sentence tries_left(std::optional<PinState> pin) {
    if (!pin) return Sentence{"pin-tries-not-asked", {}};
    const Sentence tries = tries_told(*pin);
    return tries.empty() ? Sentence{"pin-tries-untold", {}} : tries;
}

Error wrong_pin(const Place& place, CardState state, const std::vector<Sentence>& reason, bool locked) {
    state.pin = pin_now(place, locked);
    locked = locked || state.pin == PinState::locked;
    Error stop(Exit::failed,
               {"pin-wrong", {{"reason", reason}, {"tries", std::vector{tries_left(state.pin)}}}},
               locked ? Advice{"unlock", Sentence{"unlock", {}}} : check_pin());
    stop.tell_card(facts_of(place, std::move(state)));
    return stop;
}

// The crypto library's own session, opened and closed here.
int try_pin(const Place& place, CK_SLOT_ID slot, Pin& pin) {
    std::string path = library_way(place.module_path).path;
    int code = kvInitialize(path.data(), static_cast<int>(slot));
    if (code == ZVC_OK) code = kvLogin(pin.text());
    if (code != ZVC_OK) return code;
    return kvFinalize();
}

void prove_pin(const Place& place, const CardState& state, Pin& pin, PinSource& source) {
    const int code = try_pin(place, state.slot, pin);
    if (code == ZVC_OK) return;
    const auto reason = crypto_reason(code);
    kvFinalize();
    if (code == ZVC_ERR_PIN_INCORRECT || code == ZVC_ERR_PIN_LOCKED) {
        source.refused();
        throw wrong_pin(place, state, reason, code == ZVC_ERR_PIN_LOCKED);
    }
    throw Error(Exit::failed, Sentence{"pin-unchecked", {{"reason", reason}}});
}

// The same for every user, and for every way to the module, in which a slot may have other numbers. (FNV-1a: the name of a file is no secret.)
std::string lock_of(const Place& place, const CardState& state) {
    std::error_code none;
    const std::string module = std::filesystem::weakly_canonical(place.module_path, none);
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : fmt::format("{}\n{}", module, state.serial))
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return fmt::format("card-{:016x}", hash);
}

// People take their time: the card that gets the PIN is looked at again.
Pin ask_pin(const Place& place, const CardState& state, PinSource& source) {
    Pin pin = source.ask(facts_of(place, state));
    check_pin_form(pin);
    const CardState now = card_state(place);
    if (now.slot != state.slot || now.serial != state.serial)
        throw Error(Exit::refused, Sentence{"pin-other-card", {}});
    refuse_risky_try(now, source.final_try());
    return pin;
}

// What is known of the card is added to `facts` as soon as it is.
OpenedCard open_untouched(const CardChoice& choice, PinSource& source, Use use,
                          std::optional<CardFacts>& facts) {
    std::optional<Pin> early = source.at_once();
    if (early) check_pin_form(*early);
    auto [place, state] = find_card(choice, facts);
    if (use == Use::changing && state.slot > ZV_LAST_SLOT)
        throw Error(Exit::refused,
                    Sentence{"slot-too-high",
                             {{"slot", static_cast<long>(state.slot)}, {"last", long{ZV_LAST_SLOT}}}});
    refuse_risky_try(state, source.final_try());
    std::optional<Lock> lock;
    if (use == Use::changing) lock.emplace(lock_of(place, state), "busy-card");
    Pin pin = early ? std::move(*early) : ask_pin(place, state, source);
    prove_pin(place, state, pin, source);
    return {std::move(place), std::move(state), std::move(pin), std::move(lock)};
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

CardState card_state(const Place& place) {
    const Module module(place.module_path);
    const CK_SLOT_ID slot = slot_of(module, place.reader);
    return card_state(slot, module.token(slot));
}

FoundCard find_card(const CardChoice& choice, std::optional<CardFacts>& facts) {
    const auto wait = choice.wait;
    for (;;)
        try {
            const Place place = find_place(choice);
            facts = facts_of(place, {});
            const CardState state = card_state(place);
            facts = facts_of(place, state);
            return {place, state};
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
