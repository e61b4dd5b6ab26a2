#pragma once

#include "simcard/module/key_file.h"
#include "simcard/module/state.h"

#include <optional>
#include <string>

namespace simcard {

// A session of SoftHSM's own beside the caller's: what the caller has under way stays as it is.
class SideSession {
  public:
    explicit SideSession(const Session& beside) {
        const auto& token = state().slots[beside.slot].token();
        result_ = hsm().C_OpenSession(*token, CKF_SERIAL_SESSION, nullptr, nullptr, &session_);
    }
    ~SideSession() {
        if (result_ == CKR_OK) hsm().C_CloseSession(session_);
    }
    SideSession(const SideSession&) = delete;
    SideSession& operator=(const SideSession&) = delete;

    [[nodiscard]] bool holds(const std::string& modulus);
    [[nodiscard]] std::optional<RsaKey> generate(CK_ULONG bits);

  private:
    static const CK_FUNCTION_LIST& hsm() { return *state().hsm->get(); }
    [[nodiscard]] bool read_part(CK_OBJECT_HANDLE key, CK_ATTRIBUTE_TYPE type, std::string& number);

    CK_SESSION_HANDLE session_ = 0;
    CK_RV result_;
};

} // namespace simcard
