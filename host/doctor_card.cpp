#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "host/doctor_looks.h"
#include "host/listing.h"
#include "host/mask_words.h"
#include "host/pin_gate.h"
#include "host/place.h"
#include "host/slot_choice.h"
#include "zvConstants.h"

#include <algorithm>

namespace zvhost {
namespace {

constexpr int DAYS_OF_STATUS = 90;

// A certificate and what goes with it take some 2 kB, a pair of keys as much.
constexpr CK_ULONG LITTLE_ROOM = 4096;

Advice ask_issuer() {
    return advise("ask-issuer", "doctor-ask-issuer");
}

// The slot of the card's reader, chosen as every other command chooses it; null when there is none.
const SlotFacts* slot_of_card(Looks& looks, const ExaminedCard& card, const ModuleFacts& module) {
    std::vector<NamedSlot> named;
    for (const SlotFacts& slot : module.slots)
        named.push_back({slot.id, slot.description});
    const auto facts_of = [&](CK_SLOT_ID id) -> const SlotFacts& {
        return *std::find_if(module.slots.begin(), module.slots.end(),
                             [&](const SlotFacts& slot) { return slot.id == id; });
    };
    try {
        return &facts_of(
            choose_slot(named, card.reader, [&](CK_SLOT_ID id) { return facts_of(id).serial(); }));
    } catch (const Error& error) {
        looks.add("slots", Health::wrong, error);
        return nullptr;
    }
}

void tell_slot(Looks& looks, const ExaminedCard& card, const SlotFacts& slot) {
    const Values values = {{"reader", card.reader},
                           {"slot", static_cast<long>(slot.id)},
                           {"last", long{ZV_LAST_SLOT}},
                           {"module", card.module}};
    if (slot.id <= ZV_LAST_SLOT) return looks.add("slots", Health::right, "doctor-slot", values);
    looks.add("slots", Health::wrong, "doctor-slot-high", values,
              {advise("low-slot", "doctor-low-slot", {{"last", long{ZV_LAST_SLOT}}})});
}

void tell_pin(Looks& looks, const Values& values, CK_FLAGS flags) {
    const auto add = [&](Health health, const char* sentence, std::vector<Advice> advice = {}) {
        looks.add("pin", health, sentence, values, std::move(advice));
    };
    if ((flags & CKF_USER_PIN_INITIALIZED) == 0)
        return add(Health::wrong, "doctor-pin-not-set", {ask_issuer()});
    switch (pin_state(flags)) {
    case PinState::locked:
        return add(Health::wrong, "doctor-pin-locked", {advise("unlock", "doctor-unlock")});
    case PinState::last_try:
        return add(Health::warning, "doctor-pin-last-try", {advise("final-try", "doctor-final-try")});
    case PinState::low:
        return add(Health::warning, "doctor-pin-low", {advise("check-pin", "doctor-check-pin")});
    case PinState::no_warning:
        return add(Health::right, "doctor-pin");
    }
}

void tell_flags(Looks& looks, const Values& values, CK_FLAGS flags) {
    if ((flags & CKF_TOKEN_INITIALIZED) == 0)
        return looks.add("token", Health::wrong, "doctor-token-blank", values, {ask_issuer()});
    looks.add("token", Health::right, "doctor-token", values);
    tell_pin(looks, values, flags);
    if ((flags & CKF_USER_PIN_TO_BE_CHANGED) != 0)
        looks.add("pin", Health::warning, "doctor-pin-to-be-changed", values,
                  {advise("change-pin", "doctor-change-pin")});
    if ((flags & CKF_PROTECTED_AUTHENTICATION_PATH) != 0)
        looks.add("pin", Health::warning, "doctor-keypad", values);
    if ((flags & CKF_WRITE_PROTECTED) != 0)
        looks.add("token", Health::wrong, "doctor-write-protected", values, {ask_issuer()});
}

bool is_said(CK_ULONG amount) {
    return amount != CK_UNAVAILABLE_INFORMATION;
}

Value amount_of(CK_ULONG amount) {
    return is_said(amount) ? Value(static_cast<long>(amount)) : Value();
}

void tell_room(Looks& looks, const ExaminedCard& card, const CK_TOKEN_INFO& token) {
    const Values values = {{"reader", card.reader},
                           {"free_public", amount_of(token.ulFreePublicMemory)},
                           {"total_public", amount_of(token.ulTotalPublicMemory)},
                           {"free_private", amount_of(token.ulFreePrivateMemory)},
                           {"total_private", amount_of(token.ulTotalPrivateMemory)}};
    if (!is_said(token.ulFreePublicMemory) && !is_said(token.ulFreePrivateMemory))
        return looks.add("room", Health::unknown, "doctor-room-unknown", values);
    // Modules that do not know say 0 of both.
    if (token.ulTotalPublicMemory == 0 && token.ulTotalPrivateMemory == 0)
        return looks.add("room", Health::unknown, "doctor-room-unknown", values);
    const bool little = std::min(token.ulFreePublicMemory, token.ulFreePrivateMemory) < LITTLE_ROOM;
    std::vector<Advice> advice;
    if (little) advice.push_back(advise("make-room", "doctor-make-room"));
    looks.add("room", little ? Health::warning : Health::right, little ? "doctor-room-little" : "doctor-room",
              values, std::move(advice));
}

void tell_beginning(Looks& looks, const std::string& id, const X509& certificate) {
    const auto begins = begin_of(certificate);
    if (!begins || *begins <= looks.now) return;
    looks.add("clock", Health::warning, "doctor-certificate-begins",
              {{"id", id}, {"begins", Moment{*begins}}}, {advise("set-clock", "doctor-set-clock")});
}

// Of a person's name each word stands for the person, in any order; an organisation's are words like others.
bool is_persons_name(const std::string& attribute) {
    return attribute == "CN" || attribute == "SN" || attribute == "GN" || attribute == "pseudonym";
}

// An authority's certificate says nothing of a person.
void note_holder(Looks& looks, X509& certificate) {
    if (::X509_check_ca(&certificate) != 0) return;
    const DistinguishedName subject = subject_of(certificate);
    std::vector<std::string>& personal = looks.examination.personal;
    for (const NameAttribute& attribute : subject.attributes()) {
        if (attribute.name == "C") continue;
        if (is_persons_name(attribute.name)) add_name(personal, attribute.value);
        personal.push_back(attribute.value);
    }
    std::sort(personal.begin(), personal.end());
    personal.erase(std::unique(personal.begin(), personal.end()), personal.end());
}

void tell_certificates(Looks& looks, const std::vector<CardObject>& objects) {
    for (const CardObject& object : objects) {
        if (object.type != CKO_CERTIFICATE) continue;
        const Certificate certificate = certificate_from(object.value);
        if (!certificate) continue;
        tell_beginning(looks, object.id, *certificate);
        note_holder(looks, *certificate);
    }
}

// What the command for that says, without a second visit to the card.
void add_status(Looks& looks, const ExaminedCard& card, const SlotFacts& slot) {
    const CardFacts facts{card.reader, card.module_path, card.services, card_state(slot.id, *slot.token)};
    try {
        looks.examination.cards.push_back(status_of(facts, CardView(slot.objects), DAYS_OF_STATUS));
    } catch (const Error& error) {
        looks.add("certificates", Health::unknown, error);
    }
}

void tell_card(Looks& looks, const ExaminedCard& card, const SlotFacts& slot) {
    tell_slot(looks, card, slot);
    if (!slot.token)
        return looks.add("token", Health::wrong, "doctor-token-silent", {{"reader", card.reader}},
                         {advise("insert-card", "doctor-reinsert-card")});
    const CK_TOKEN_INFO& token = *slot.token;
    tell_flags(looks,
               {{"reader", card.reader},
                {"label", token_text(token.label, sizeof token.label)},
                {"serial", slot.serial()}},
               token.flags);
    tell_room(looks, card, token);
    tell_certificates(looks, slot.objects);
    add_status(looks, card, slot);
}

} // namespace

void look_at_cards(Looks& looks) {
    for (const ExaminedCard& card : looks.cards) {
        const auto module = looks.modules.find(card.module_path);
        if (module == looks.modules.end() || !module->second.usable()) continue;
        if (const SlotFacts* slot = slot_of_card(looks, card, module->second)) tell_card(looks, card, *slot);
    }
}

} // namespace zvhost
