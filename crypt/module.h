#pragma once

#include "crypt/failure.h"
#include "pkcs11.h"

#include <string>

namespace zvcrypt {

// A PKCS#11 module in memory and its function list.
class Module {
  public:
    explicit Module(const std::string& path);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Calls an entry of the function list; one that the module left out is answered for it.
    template <class Entry, class... Arguments>
    [[nodiscard]] CK_RV call(Entry CK_FUNCTION_LIST::*entry, Arguments... arguments) const {
        const Entry function = list_->*entry;
        return function == nullptr ? CKR_FUNCTION_NOT_SUPPORTED : function(arguments...);
    }

  private:
    void* handle_;
    CK_FUNCTION_LIST_PTR list_ = nullptr;
};

// The sentence, with the function that failed and its result.
[[nodiscard]] std::string module_reason(const char* sentence, const char* function, CK_RV result);

// The failure that a module's result stands for.
[[nodiscard]] Failure module_failure(const char* function, CK_RV result);

inline void check(const char* function, CK_RV result) {
    if (result != CKR_OK) throw module_failure(function, result);
}

} // namespace zvcrypt
