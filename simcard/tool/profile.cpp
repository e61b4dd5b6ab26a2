#include "simcard/tool/profile.h"

#include "simcard/authority/errors.h"
#include "simcard/tool/personalise.h"
#include "zvConstants.h"

#include <array>

namespace simcard {
namespace {

constexpr std::array<PairPlan, 2> SIGNATURE_PAIRS{{
    {ZV_SIGNATURE_SERIES "0", "signature", &CardPlan::signature_days},
    {ZV_AUTHENTICATION_SERIES "0", "authentication", &CardPlan::authentication_days},
}};

// A services card's own pair comes first.
constexpr std::array<PairPlan, 2> SERVICES_PAIRS{{
    {ZV_OWN_PAIR, "cns", &CardPlan::cns_days, services_card_name},
    {ZV_SIGNATURE_SERIES "0", "signature", &CardPlan::signature_days},
}};

// The ATRs offer T=1 alone and carry the profile's name as historical bytes ("ZVSIMSIG", "ZVSIMCNS",
// "ZVSIMCSG", "ZVSIMSGP").
constexpr std::array<Profile, 4> ALL{{
    {"signature", "3B8880015A5653494D5349470F", "", SIGNATURE_PAIRS, ZV_AUTHORITY_ID},
    {"cns", "3B8880015A5653494D434E530C", "cns", std::span(SERVICES_PAIRS).first<1>(), nullptr, true},
    {"cns-signature", "3B8880015A5653494D43534705", "cns", SERVICES_PAIRS, nullptr, true},
    {"signature-pin", "3B8880015A5653494D53475016", "", SIGNATURE_PAIRS, ZV_AUTHORITY_ID, false,
     ZV_SIGNATURE_SERIES},
}};

} // namespace

std::span<const Profile> profiles() {
    return ALL;
}

const Profile& profile_named(std::string_view name) {
    std::string known;
    for (const Profile& profile : ALL) {
        if (profile.name == name) return profile;
        known += (known.empty() ? "" : ", ") + std::string(profile.name);
    }
    throw Refusal("There is no card profile \"" + std::string(name) + "\"; there are: " + known + ".");
}

} // namespace simcard
