#pragma once

#include "simcard/authority/name.h"

#include <span>
#include <string_view>

namespace simcard {

struct CardPlan;

// A key pair with its certificate, all three under the same CKA_ID and CKA_LABEL.
struct PairPlan {
    const char* id;
    // Name of a kind of certificate that the authority knows.
    const char* kind;
    // Where a plan says when the certificate ends.
    int CardPlan::*days;
    // Makes the subject of its certificate from the holder and the card's serial number.
    ossl::Name (*subject)(const Holder&, const std::string&) = holder_name;
};

// What a kind of card is made with. The profiles are a table: see profile.cpp.
struct Profile {
    const char* name;
    // A fictitious answer to reset, of this profile alone, in hexadecimal.
    const char* atr;
    // The card's flags in the crypto library's configuration; empty for none.
    const char* flags;
    std::span<const PairPlan> pairs;
    // CKA_ID and CKA_LABEL of the authority's certificate; null when the card does not hold it.
    const char* authority_id;
    // Whether it holds a services card's data object "PDATA": see personal_data.h.
    bool has_personal_data = false;
    // What its `card.ini` says under that name.
    const char* pin_each_signature = "";
};

[[nodiscard]] std::span<const Profile> profiles();

// The profile of that name. @throws Refusal that names those there are.
[[nodiscard]] const Profile& profile_named(std::string_view name);

} // namespace simcard
