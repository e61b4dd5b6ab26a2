#pragma once

#include "pkcs11.h"
#include "zvRenew.h"

namespace zv {

// A failure, told to whom it concerns in the order of the calls. It is ZV_FAILED to whoever it is returned to:
//
//     return Failure(TITLE).step("C_Login", rv).sentence("Errore nel login alla smartcard (%s)", rv);
class Failure {
  public:
    explicit Failure(const char* title) : title_(title) {}

    // To the log: the step that failed and its code.
    const Failure& step(const char* name, CK_RV code) const;
    const Failure& step(const char* name, int code) const { return step(name, static_cast<CK_RV>(code)); }
    // To the log: a sentence for a person, as it is or with the message of a code for its "%s".
    const Failure& sentence(const char* text) const;
    const Failure& sentence(const char* format, CK_RV code) const;
    // To the user, in szSockMsg: a text for its "%s", or a code for its "%lx".
    const Failure& user(const char* format, const char* text = "") const;
    const Failure& user(const char* format, CK_RV code) const;

    template <typename Result> operator Result() const { return ZV_FAILED; }

  private:
    const char* title_;
};

} // namespace zv
