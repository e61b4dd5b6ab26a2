#pragma once

#include "pkcs11/front_interface.h"
#include "tests/simcard/objects.h"

#include <dlfcn.h>

namespace zvtest {

// The front before a module, loaded as the library loads a module: by a link of the module's name.
class Front {
  public:
    explicit Front(const std::string& module, const char* name = "libcardos11.so") {
        // Whoever uses the front keeps it in memory.
        void* kept = ::dlopen(ZVFRONT_MODULE, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        let_go_ = reinterpret_cast<pkcs11::LetGo>(::dlsym(kept, pkcs11::LET_GO));
        stand_before_ = reinterpret_cast<pkcs11::StandBefore>(::dlsym(kept, pkcs11::STAND_BEFORE));
        stands_ = stand_before_(module.c_str()) == 0;
        std::filesystem::create_symlink(ZVFRONT_MODULE, folder_.path() / name);
        if (stands_) loaded_.emplace(folder_.path() / name);
    }
    ~Front() { let_go(); }
    Front(const Front&) = delete;
    Front& operator=(const Front&) = delete;

    [[nodiscard]] CK_FUNCTION_LIST* operator->() const { return loaded_->list(); }
    [[nodiscard]] CK_FUNCTION_LIST* list() const { return loaded_->list(); }
    [[nodiscard]] bool stands() const { return stands_; }
    void let_go() const { let_go_(); }

    [[nodiscard]] std::vector<CK_SLOT_ID> slots(CK_BBOOL with_card = CK_FALSE) const {
        CK_ULONG count = 0;
        EXPECT_EQ(list()->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_OK);
        std::vector<CK_SLOT_ID> all(count + 1);
        EXPECT_EQ(list()->C_GetSlotList(with_card, all.data(), &++count), CKR_OK);
        all.resize(count);
        return all;
    }
    [[nodiscard]] CK_SESSION_HANDLE open(CK_SLOT_ID slot = 0) const {
        CK_SESSION_HANDLE session = 0;
        list()->C_OpenSession(slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session);
        return session;
    }
    CK_RV login(CK_SESSION_HANDLE session, std::string pin) const {
        return list()->C_Login(session, CKU_USER, reinterpret_cast<CK_UTF8CHAR*>(pin.data()), pin.size());
    }
    // How many objects a session finds, up to twenty.
    [[nodiscard]] CK_ULONG objects(CK_SESSION_HANDLE session) const {
        CK_OBJECT_HANDLE found[20];
        CK_ULONG count = 0;
        EXPECT_EQ(list()->C_FindObjectsInit(session, nullptr, 0), CKR_OK);
        EXPECT_EQ(list()->C_FindObjects(session, found, 20, &count), CKR_OK);
        EXPECT_EQ(list()->C_FindObjectsFinal(session), CKR_OK);
        return count;
    }
    CK_RV store(CK_SESSION_HANDLE session, std::string label) const {
        CK_OBJECT_CLASS data = CKO_DATA;
        CK_BBOOL yes = CK_TRUE;
        CK_ATTRIBUTE entries[] = {attribute(CKA_CLASS, data), attribute(CKA_TOKEN, yes),
                                  attribute(CKA_LABEL, label)};
        CK_OBJECT_HANDLE handle = 0;
        return list()->C_CreateObject(session, entries, 3, &handle);
    }

  private:
    TemporaryFolder folder_;
    pkcs11::LetGo let_go_ = nullptr;
    pkcs11::StandBefore stand_before_ = nullptr;
    bool stands_ = false;
    std::optional<pkcs11::Module> loaded_;
};

// The front before a simulated card.
class BeforeCard : public testing::Test {
  protected:
    // The file stays in memory from test to test.
    BeforeCard() { card.reset(); }

    EmptyCards cards;
    simcard::Card made = cards.add();
    Module card; // counts what arrives
    Front front{ZVSIMCARD_MODULE};
};

} // namespace zvtest
