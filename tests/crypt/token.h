#pragma once

#include "certificates.h"
#include "pkcs11.h"

#include <filesystem>

namespace test {

inline constexpr const char* userPin = "12345";

// A SoftHSM token in a folder, filled through a session of the test's own; release() gives the module free
// for the library.
class Token {
  public:
    explicit Token(const std::filesystem::path& folder);
    ~Token();
    Token(const Token&) = delete;
    Token& operator=(const Token&) = delete;

    // Makes a key pair on the token and gives its public key.
    [[nodiscard]] KeyPtr generate(const std::string& id);
    void store(const Certificate& certificate, const std::string& id);
    void release();

    [[nodiscard]] int slot() const { return static_cast<int>(slot_); }
    [[nodiscard]] CK_FUNCTION_LIST& module() { return *list_; }

  private:
    void* handle_;
    CK_FUNCTION_LIST_PTR list_ = nullptr;
    CK_SLOT_ID slot_ = 0;
    CK_SESSION_HANDLE session_ = 0;
};

} // namespace test
