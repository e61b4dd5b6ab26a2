#include "simcard/common/card_folder.h"

#include "simcard/common/environment.h"
#include "simcard/common/problem.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <tuple>

namespace fs = std::filesystem;

namespace simcard {
namespace {

[[noreturn]] void fail(const std::string& what, const fs::path& path) {
    throw CardProblem(what + " " + path.string() + ": " + std::strerror(errno) + ".");
}

void write_all(int descriptor, std::string_view text, const fs::path& path) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) fail("Cannot write", path);
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    }
}

// A file that takes another one's place once it is complete.
class Replacement {
  public:
    explicit Replacement(const fs::path& target) : target_(target), name_(target.string() + ".XXXXXX") {
        descriptor_ = ::mkstemp(name_.data());
        if (descriptor_ < 0) fail("Cannot write", target);
    }
    ~Replacement() {
        if (descriptor_ >= 0) ::close(descriptor_);
        if (!name_.empty()) (void)std::remove(name_.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void commit(std::string_view text) {
        write_all(descriptor_, text, target_);
        if (std::rename(name_.c_str(), target_.c_str()) != 0) fail("Cannot write", target_);
        name_.clear();
    }

  private:
    fs::path target_;
    std::string name_;
    int descriptor_;
};

} // namespace

fs::path cards_home() {
    if (const std::string home = environment("ZVSIMCARD_HOME"); !home.empty()) return fs::absolute(home);
    if (const std::string data = environment("XDG_DATA_HOME"); !data.empty())
        return fs::absolute(data) / "zvsimcard";
    const std::string user = environment("HOME");
    if (user.empty())
        throw CardProblem("There is no folder of cards: neither ZVSIMCARD_HOME nor HOME is set.");
    return fs::path(user) / ".local" / "share" / "zvsimcard";
}

Card load_card(const fs::path& folder) {
    std::ifstream file(folder / CARD_FILE, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw CardProblem("Cannot read " + (folder / CARD_FILE).string() + ".");
    Card card = parse_card(text);
    card.folder = folder;
    return card;
}

void save_card(const Card& card) {
    replace_file(card.folder / CARD_FILE, card_text(card));
}

void replace_file(const fs::path& path, std::string_view content) {
    Replacement(path).commit(content);
}

std::vector<Card> list_cards(const fs::path& home, std::vector<std::string>* problems) {
    std::vector<Card> cards;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(home, error)) {
        if (entry.is_symlink(error) || !fs::exists(entry.path() / CARD_FILE, error)) continue;
        try {
            cards.push_back(load_card(entry.path()));
        } catch (const CardProblem& problem) {
            if (problems) problems->push_back(entry.path().filename().string() + ": " + problem.what());
        }
    }
    std::sort(cards.begin(), cards.end(), [](const Card& a, const Card& b) {
        return std::tie(a.reader, a.folder) < std::tie(b.reader, b.folder);
    });
    return cards;
}

CardLock::CardLock(const fs::path& folder)
    : descriptor_(::open((folder / "card.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (descriptor_ < 0) fail("Cannot lock", folder);
    while (::flock(descriptor_, LOCK_EX) != 0)
        if (errno != EINTR) {
            ::close(descriptor_);
            fail("Cannot lock", folder);
        }
}

CardLock::~CardLock() {
    ::close(descriptor_);
}

Card update_card(const fs::path& folder, const std::function<void(Card&)>& change) {
    const CardLock lock(folder);
    Card card = load_card(folder);
    change(card);
    save_card(card);
    return card;
}

void take_out_card(const fs::path& folder) {
    update_card(folder, [](Card& card) { card.inserted = false; });
}

void put_back_card(const fs::path& folder) {
    update_card(folder, [](Card& card) {
        if (!card.inserted) ++card.insertions;
        card.inserted = true;
    });
}

} // namespace simcard
