#pragma once

#include "simcard/common/card.h"

namespace simcard {

// Makes a card without objects: an initialised SoftHSM token in a folder of cards, made if need be (mode
// 0700), and its card.ini.
//
// @param home     the folder of cards; nothing else may make a token in it meanwhile
// @param settings what goes into card.ini; `folder` and `token` are filled in, and `serial` when it is empty
// @param so_pin   PIN of the security officer, 4 to 255 bytes
// @param user_pin PIN of the user, 4 to 255 bytes
// @return the card as written
// @throws CardProblem when it cannot be made; nothing is then left in `home`
[[nodiscard]] Card make_card(const std::filesystem::path& home, const Card& settings, std::string_view so_pin,
                             std::string_view user_pin);

} // namespace simcard
