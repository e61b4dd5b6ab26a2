#include "simcard/tool/as_made.h"

#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/card_plan.h"

#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr const char* COPY_FOLDER = "as-made";

// What the card consists of, beside card.ini, which is put back under its own rules; locks are of the moment.
bool is_content(const fs::directory_entry& entry) {
    const fs::path& file = entry.path();
    return entry.is_regular_file() && file.extension() != ".lock" && file.filename() != CARD_FILE;
}

void copy_content(const fs::path& from, const fs::path& to) {
    for (const auto& entry : fs::directory_iterator(from))
        if (is_content(entry))
            fs::copy_file(entry.path(), to / entry.path().filename(), fs::copy_options::overwrite_existing);
}

void remove_what_came_later(const fs::path& folder, const fs::path& as_made) {
    std::vector<fs::path> later;
    for (const auto& entry : fs::directory_iterator(folder))
        if (is_content(entry) && !fs::exists(as_made / entry.path().filename()))
            later.push_back(entry.path());
    for (const fs::path& file : later) {
        fs::remove(file);
        if (file.extension() == ".object") fs::remove(fs::path(file).replace_extension(".lock"));
    }
}

// SoftHSM removes an object's lock with the object, and fails to remove an object that has none.
void make_missing_locks(const fs::path& folder) {
    std::vector<fs::path> locks;
    for (const auto& entry : fs::directory_iterator(folder))
        if (fs::path lock = entry.path(); lock.extension() == ".object")
            locks.push_back(lock.replace_extension(".lock"));
    for (const fs::path& lock : locks)
        if (!fs::exists(lock)) std::ofstream{lock};
}

} // namespace

void keep_as_made(const Card& card) {
    const fs::path as_made = card.folder / COPY_FOLDER;
    fs::create_directory(as_made);
    fs::permissions(as_made, fs::perms::owner_all);
    copy_content(card.folder, as_made);
    fs::copy_file(card.folder / CARD_FILE, as_made / CARD_FILE);
}

void put_back_as_made(const fs::path& folder) {
    const fs::path as_made = folder / COPY_FOLDER;
    if (!fs::exists(as_made / CARD_FILE))
        throw Refusal("The card \"" + folder.filename().string() + "\" was not kept as it was made.");
    update_card(folder, [&](Card& card) {
        if (!card.inserted && holds_a_card(folder.parent_path(), card.reader))
            throw Refusal("The reader \"" + card.reader + "\" holds another card: take it out first.");
        remove_what_came_later(folder, as_made);
        copy_content(as_made, folder);
        make_missing_locks(folder);
        const unsigned long insertions = card.insertions;
        card = load_card(as_made);
        card.folder = folder;
        card.insertions = insertions + 1;
    });
}

} // namespace simcard
