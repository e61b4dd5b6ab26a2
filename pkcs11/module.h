#pragma once

#include "pkcs11.h"

#include <stdexcept>
#include <string>

namespace pkcs11 {

// Why a file cannot be used as a module: it does not load, for the reason that the system gives, or it loads and
// is none.
class NotLoaded : public std::runtime_error {
    using std::runtime_error::runtime_error;
};
class NotAModule : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What becomes of a module's file in memory. There are modules that crash when a process loads them a second time.
enum class Mapped { while_owned, until_exit };

// A PKCS#11 module in memory and its function list. It is not initialised, nor finalised.
class Module {
  public:
    // @throws NotLoaded, NotAModule
    explicit Module(const std::string& path, Mapped mapped = Mapped::while_owned);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    [[nodiscard]] CK_FUNCTION_LIST* list() const { return list_; }

    // Calls a function of the list, whose entry may be missing.
    template <auto Entry, class... Arguments> [[nodiscard]] CK_RV call(Arguments... arguments) const {
        const auto function = list_->*Entry;
        return function == nullptr ? CKR_FUNCTION_NOT_SUPPORTED : function(arguments...);
    }

    // Another symbol of the file; null when it has none of that name.
    [[nodiscard]] void* symbol(const char* name) const;

  private:
    void* handle_;
    CK_FUNCTION_LIST* list_ = nullptr;
};

} // namespace pkcs11
