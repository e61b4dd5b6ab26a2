#pragma once

#include "pkcs11/module.h"
#include "simcard/control.h"

#include <string>

namespace zvtest {

// A function of the control, found in the module.
#define ZVTEST_CONTROL(name) function<decltype(&name)>(#name)

// The simulated card's module (or a copy of its file), loaded while this lives, with its control.
class Module {
  public:
    explicit Module(const std::string& path = ZVSIMCARD_MODULE) : loaded_(path) {}
    ~Module() {
        ZVTEST_CONTROL(zvsimcard_reset)();
        list()->C_Finalize(nullptr);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    [[nodiscard]] CK_FUNCTION_LIST* operator->() const { return list(); }
    [[nodiscard]] CK_FUNCTION_LIST* list() const { return loaded_.list(); }

    template <class T> [[nodiscard]] T function(const char* name) const {
        return reinterpret_cast<T>(loaded_.symbol(name));
    }

    int add_rules(const std::string& rules) { return ZVTEST_CONTROL(zvsimcard_add_rules)(rules.c_str()); }
    unsigned long rules_left() { return ZVTEST_CONTROL(zvsimcard_rules_left)(); }
    void reset() { ZVTEST_CONTROL(zvsimcard_reset)(); }
    unsigned long calls(const char* name = nullptr) { return ZVTEST_CONTROL(zvsimcard_calls)(name); }
    void record(bool on = true) { ZVTEST_CONTROL(zvsimcard_record)(on); }
    std::string recorded() {
        std::string text(ZVTEST_CONTROL(zvsimcard_recorded)(nullptr, 0UL) + 1, '\0');
        text.resize(ZVTEST_CONTROL(zvsimcard_recorded)(text.data(), text.size()));
        return text;
    }
    int take_out(unsigned long slot = 0) { return ZVTEST_CONTROL(zvsimcard_take_out)(slot); }
    int put_back(unsigned long slot = 0) { return ZVTEST_CONTROL(zvsimcard_put_back)(slot); }
    void use_keys(const std::string& file) { ZVTEST_CONTROL(zvsimcard_use_keys)(file.c_str()); }

    CK_RV login(CK_SESSION_HANDLE session, std::string pin, CK_USER_TYPE user = CKU_USER) {
        return list()->C_Login(session, user, reinterpret_cast<CK_UTF8CHAR*>(pin.data()), pin.size());
    }
    // A read/write session with a slot; 0 when there is none.
    [[nodiscard]] CK_SESSION_HANDLE open(CK_SLOT_ID slot = 0) {
        CK_SESSION_HANDLE session = 0;
        list()->C_OpenSession(slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session);
        return session;
    }
    [[nodiscard]] CK_FLAGS token_flags(CK_SLOT_ID slot = 0) {
        CK_TOKEN_INFO info{};
        list()->C_GetTokenInfo(slot, &info);
        return info.flags;
    }

  private:
    pkcs11::Module loaded_;
};

#undef ZVTEST_CONTROL

} // namespace zvtest
