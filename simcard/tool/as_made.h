#pragma once

#include "simcard/common/card.h"

// Every card keeps a copy of itself as it was made, in a folder of its own that SoftHSM does not look into.
namespace simcard {

// Keeps the card as it is now, to be put back later.
void keep_as_made(const Card& card);

// Puts a card back as it was made: its objects, its PIN and PIN tries, its settings, in the reader.
//
// Sessions that a program still has open on the card are void afterwards.
// @throws Refusal when the card has no copy of itself, or another card took its reader; another exception
// when copying fails: put it back once more then.
void put_back_as_made(const std::filesystem::path& folder);

} // namespace simcard
