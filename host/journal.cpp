#include "host/journal.h"

#include "host/file_writing.h"
#include "host/journal_file.h"
#include "host/journal_problem.h"
#include "host/journal_text.h"
#include "host/user_folders.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace zvhost {
namespace {

constexpr int MOST_CARDS = 1000;

std::optional<JournalEntry> entry_in(const std::string& path) {
    const std::optional<std::string> text = read_journal_file(path);
    return text ? journal_entry(*text) : std::nullopt;
}

// The file's name says which card it is about.
RememberedCard remembered_in(const std::string& path, const std::string& serial) {
    const std::optional<JournalEntry> entry = entry_in(path);
    RememberedCard card = entry ? entry->card : RememberedCard();
    card.serial = serial;
    return card;
}

} // namespace

const RememberedRenewal* RememberedCard::renewal(zv::Kind kind) const {
    const auto found = std::find_if(renewals.begin(), renewals.end(),
                                    [&](const RememberedRenewal& one) { return one.kind == kind; });
    return found == renewals.end() ? nullptr : &*found;
}

bool RememberedCard::is_pending(zv::Kind kind) const {
    return std::any_of(pending.begin(), pending.end(),
                       [&](const RememberedPair& pair) { return pair.kind == kind; });
}

void RememberedCard::set_renewal(RememberedRenewal renewal) {
    end_renewal(renewal.kind);
    renewals.push_back(std::move(renewal));
}

void RememberedCard::end_renewal(zv::Kind kind) {
    std::erase_if(renewals, [&](const RememberedRenewal& one) { return one.kind == kind; });
}

Journal::Journal() : folder_(state_folder()) {
    if (!folder_.empty()) folder_ += "/zvrenew";
}

RememberedCard Journal::card(const std::string& serial) const {
    return remembered_in(folder_ + "/" + journal_file_of(serial), serial);
}

std::vector<RememberedCard> Journal::cards() const {
    std::vector<RememberedCard> cards;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder_, error);
    for (int i = 0; !error && i < MOST_CARDS && entry != std::filesystem::directory_iterator();
         ++i, entry.increment(error))
        if (const auto serial = card_of_journal_file(entry->path().filename()))
            cards.push_back(remembered_in(entry->path(), *serial));
    std::sort(cards.begin(), cards.end(), [](const auto& a, const auto& b) { return a.serial < b.serial; });
    return cards;
}

int Journal::change(const std::string& serial, const std::function<void(RememberedCard&)>& work) const {
    if (serial.empty()) return 0;
    if (const int error = make_private_folder(folder_); error != 0) return error;
    const FolderTurn turn(folder_);
    const std::string path = folder_ + "/" + journal_file_of(serial);
    if (const auto entry = entry_in(path); entry && entry->newer) return EPROTONOSUPPORT;
    RememberedCard card = remembered_in(path, serial);
    work(card);
    return replace_file(path, as_text(card));
}

std::optional<std::chrono::milliseconds> key_pair_took(const std::string& card_serial) {
    return Journal().card(card_serial).key_pair_took;
}

void remember_key_pair_took(const std::string& card_serial, std::chrono::milliseconds took) {
    note_journal(Journal().change(card_serial, [&](RememberedCard& card) { card.key_pair_took = took; }));
}

} // namespace zvhost
