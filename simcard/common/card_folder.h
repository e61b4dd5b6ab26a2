#pragma once

#include "simcard/common/card.h"

#include <functional>

namespace simcard {

// Name of the file in a card's folder that makes the folder a card.
inline constexpr const char* CARD_FILE = "card.ini";

// The folder of cards: $ZVSIMCARD_HOME, else zvsimcard under the user's data folder ($XDG_DATA_HOME, else
// ~/.local/share). It need not exist. @throws CardProblem when none of these variables is set.
[[nodiscard]] std::filesystem::path cards_home();

// The cards of a folder in the order of their slots, that is sorted by the reader's name, then the folder's.
// A folder without card.ini is none; one whose card.ini cannot be read is left out, and said in `problems`.
[[nodiscard]] std::vector<Card> list_cards(const std::filesystem::path& home,
                                           std::vector<std::string>* problems = nullptr);

// Reads a card's card.ini. @throws CardProblem
[[nodiscard]] Card load_card(const std::filesystem::path& folder);

// Writes a card's card.ini so that a reader finds the old file or the new one. @throws CardProblem; the old
// file is then as it was.
void save_card(const Card& card);

// Gives a file a new content so that a reader finds the old one or the new one. @throws CardProblem; the old
// content is then as it was.
void replace_file(const std::filesystem::path& path, std::string_view content);

// Holds a card against changes by other processes (and other holders in this one) while it lives.
class CardLock {
  public:
    // Waits for the card. @throws CardProblem
    explicit CardLock(const std::filesystem::path& folder);
    ~CardLock();
    CardLock(const CardLock&) = delete;
    CardLock& operator=(const CardLock&) = delete;

  private:
    int descriptor_;
};

// Changes a card's card.ini under its lock: reads it, lets `change` edit it, and writes it. Gives the card
// as written. @throws CardProblem
Card update_card(const std::filesystem::path& folder, const std::function<void(Card&)>& change);

// Takes a card out of its reader, for every process: what was open on it is void. @throws CardProblem
void take_out_card(const std::filesystem::path& folder);

// Puts a card back into its reader; nothing changes when it is in. @throws CardProblem
void put_back_card(const std::filesystem::path& folder);

} // namespace simcard
