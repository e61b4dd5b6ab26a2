#include "simcard/common/make_card.h"

#include "simcard/common/card_folder.h"
#include "simcard/common/softhsm.h"
#include "simcard/common/text.h"

#include <algorithm>
#include <set>

namespace fs = std::filesystem;

namespace simcard {
namespace {

CK_UTF8CHAR* bytes(std::string& text) {
    return reinterpret_cast<CK_UTF8CHAR*>(text.data());
}

void check(CK_RV result, const char* step) {
    if (result != CKR_OK) throw SoftHsmProblem(std::string("SoftHSM refused to ") + step + ".", result);
}

// Sets the PIN of the user, as the security officer.
void set_user_pin(const SoftHsm& hsm, CK_SLOT_ID slot, std::string so_pin, std::string user_pin) {
    CK_SESSION_HANDLE session = 0;
    check(hsm->C_OpenSession(slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session),
          "open a session");
    check(hsm->C_Login(session, CKU_SO, bytes(so_pin), so_pin.size()), "log in the security officer");
    check(hsm->C_InitPIN(session, bytes(user_pin), user_pin.size()), "set the user's PIN");
    check(hsm->C_CloseSession(session), "close a session");
}

// Makes a token in the blank slot that SoftHSM always offers, and gives SoftHSM's serial number of it.
std::string make_token(const SoftHsm& hsm, const Card& settings, std::string so_pin, std::string user_pin) {
    const auto slot = hsm.slot_of("");
    if (!slot) throw CardProblem("SoftHSM offers no slot for a new token.");
    CK_UTF8CHAR label[32];
    pad(label, settings.label);
    check(hsm->C_InitToken(*slot, bytes(so_pin), so_pin.size(), label), "make a token");
    set_user_pin(hsm, *slot, std::move(so_pin), std::move(user_pin));
    CK_TOKEN_INFO info{};
    check(hsm->C_GetTokenInfo(*slot, &info), "describe the new token");
    return unpadded(info.serialNumber);
}

std::set<fs::path> folders(const fs::path& home) {
    std::set<fs::path> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(home, error))
        if (entry.is_directory(error)) found.insert(entry.path());
    return found;
}

// The folders that were not there before.
class NewFolders {
  public:
    explicit NewFolders(const fs::path& home) : home_(home), before_(folders(home)) {}
    ~NewFolders() {
        if (keep_) return;
        std::error_code error;
        for (const fs::path& folder : list())
            fs::remove_all(folder, error);
    }
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    [[nodiscard]] std::vector<fs::path> list() const {
        std::vector<fs::path> made;
        const auto now = folders(home_);
        std::set_difference(now.begin(), now.end(), before_.begin(), before_.end(), std::back_inserter(made));
        return made;
    }
    void keep() { keep_ = true; }

  private:
    fs::path home_;
    std::set<fs::path> before_;
    bool keep_ = false;
};

void make_home(const fs::path& home) {
    if (fs::exists(home)) return;
    fs::create_directories(home);
    fs::permissions(home, fs::perms::owner_all);
}

} // namespace

Card make_card(const fs::path& home, const Card& settings, std::string_view so_pin,
               std::string_view user_pin) {
    static_cast<void>(card_text(settings));
    try {
        make_home(home);
        NewFolders made(home);
        Card card = settings;
        card.token = make_token(SoftHsm(home), settings, std::string(so_pin), std::string(user_pin));
        if (card.serial.empty()) card.serial = card.token;
        if (made.list().size() != 1) throw CardProblem("SoftHSM did not make one token in " + home.string());
        card.folder = made.list().front();
        save_card(card);
        made.keep();
        return card;
    } catch (const fs::filesystem_error& error) {
        throw CardProblem(error.what());
    }
}

} // namespace simcard
