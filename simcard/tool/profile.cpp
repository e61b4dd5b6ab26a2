#include "simcard/tool/profile.h"

#include "simcard/authority/errors.h"
#include "simcard/tool/personalise.h"

#include <array>

namespace simcard {
namespace {

constexpr std::array<PairPlan, 2> signature_pairs{{
    {"DS0", "signature", &CardPlan::signature_days},
    {"AUTHCertificate0", "authentication", &CardPlan::authentication_days},
}};

// The ATRs offer T=1 alone and carry the profile's name as historical bytes ("ZVSIMSIG").
constexpr std::array<Profile, 1> all{{
    {"signature", "3B8880015A5653494D5349470F", "", signature_pairs, "Korvalenta Firma Dig"},
}};

} // namespace

std::span<const Profile> profiles() {
    return all;
}

const Profile& profile_named(std::string_view name) {
    std::string known;
    for (const Profile& profile : all) {
        if (profile.name == name) return profile;
        known += (known.empty() ? "" : ", ") + std::string(profile.name);
    }
    throw Refusal("There is no card profile \"" + std::string(name) + "\"; there is: " + known + ".");
}

} // namespace simcard
