#pragma once

#include "simcard/authority/keys.h"
#include "simcard/authority/name.h"
#include "simcard/common/card.h"
#include "simcard/tool/profile.h"
#include "simcard/tool/secret.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace simcard {

class Authority;
class TokenSession;

// PINs of a simulated card that is made without saying others.
inline constexpr const char* DEFAULT_PIN = "12345678";
inline constexpr const char* OFFICER_PIN = "87654321";

// What a card is made with.
struct CardPlan {
    // Name of the card's folder: letters, digits, '.', '-' and '_', at most 32.
    std::string name = {};
    const Profile* profile = nullptr;
    // Empty: "Simulated Reader" and the first free number from 0 to 9.
    std::string reader = {};
    // The token's label, at most 32 bytes. Empty: the name.
    std::string label = {};
    // Serial number, at most 16 letters and digits. Empty: a random one.
    std::string serial = {};
    // 4 to 31 characters.
    Secret pin = DEFAULT_PIN;
    Holder holder = {};
    // In how many days the certificates end; negative for one that has ended.
    int signature_days = 30;
    int authentication_days = 2 * 365;
    int cns_days = 30;
    // How many bytes still fit once the card is made; no limit when it is not said.
    std::optional<unsigned long> memory_left = {};
};

// Makes a card: a token with what the profile says (key pairs, certificates, data), its card.ini, and the
// copy to which it can be reset. The folder of cards and its authority are made when there are none. Other
// processes see the card when it is complete.
//
// Ready-made keys make this a matter of some 50 ms.
// @param keys  gives the authority's key, when one is made, then a key for each pair of the profile
// @return the card as written
// @throws Refusal when the plan cannot be followed (names, a reader that holds a card); Failure or
// CardProblem when making it fails. Nothing is left of it then.
[[nodiscard]] Card personalise_card(const std::filesystem::path& home, const CardPlan& plan, KeySource& keys);

// Stores a new card's objects, in the order in which it is to have them.
using Fill = std::function<void(TokenSession& token, const CardPlan& plan, const Authority& authority)>;

// Makes a card in the same way, with other objects than the profile's.
[[nodiscard]] Card make_filled_card(const std::filesystem::path& home, const CardPlan& plan, KeySource& keys,
                                    const Fill& fill);

} // namespace simcard
