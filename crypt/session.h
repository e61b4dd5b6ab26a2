#pragma once

#include "crypt/kept_pin.h"
#include "crypt/module.h"

#include <sys/types.h>

#include <string>
#include <string_view>

namespace zvcrypt {

// A session of this library's own on one slot of a module. It finalises the module only if it initialised it.
class Session {
  public:
    Session(const std::string& module_path, CK_SLOT_ID slot);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Closes everything, whatever fails; gives the first failing call's result (and name) for it to be told.
    struct Outcome {
        const char* function;
        CK_RV result;
    };
    [[nodiscard]] Outcome close() noexcept;

    void login(std::string_view pin);
    // Also after a later login that failed: the card is open all the same.
    [[nodiscard]] bool logged_in() const noexcept { return logged_in_; }
    // Of the session's own login; empty when the card was open already.
    [[nodiscard]] std::span<unsigned char> kept_pin() const noexcept { return pin_.bytes(); }
    [[nodiscard]] CK_RV call_login(CK_USER_TYPE user, std::span<unsigned char> pin) const;
    // What a reason says behind a refused PIN when the card tells that few tries are left.
    [[nodiscard]] std::string tries_warning() const;
    [[nodiscard]] CK_TOKEN_INFO token_info() const;
    [[nodiscard]] bool is_of_this_process() const noexcept;

    // Calls a function that takes the session handle first.
    template <class Entry, class... Arguments>
    [[nodiscard]] CK_RV call(Entry CK_FUNCTION_LIST::*entry, Arguments... arguments) const {
        return module_.call(entry, handle_, arguments...);
    }

  private:
    void open_session();

    Module module_;
    CK_SLOT_ID slot_;
    pid_t opener_;
    CK_SESSION_HANDLE handle_ = CK_INVALID_HANDLE;
    bool initialised_here_ = false;
    bool logged_in_ = false;
    bool logged_in_here_ = false;
    KeptPin pin_;
};

// The session that kvInitialize opened; ZVC_ERR_NO_SESSION without one.
[[nodiscard]] Session& current_session();

void close_after_failure() noexcept;

// Runs an operation on readers, cards or files. One that fails while the session is logged in ends it as kvFinalize
// would: an open card takes any PIN for the right one.
template <class Body> [[nodiscard]] int run_card_operation(const Body& body) noexcept {
    const int code = run_operation(body);
    if (code != ZVC_OK) close_after_failure();
    return code;
}

} // namespace zvcrypt
