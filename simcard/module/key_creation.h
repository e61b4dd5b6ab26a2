#pragma once

#include "pkcs11.h"
#include "simcard/module/key_file.h"

#include <vector>

namespace simcard {

// A template for C_CreateObject out of one for the generation: the caller's entries, what the key is, its
// numbers.
class Creation {
  public:
    Creation(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_OBJECT_CLASS object_class, bool is_private);
    Creation(const Creation&) = delete;
    Creation& operator=(const Creation&) = delete;

    [[nodiscard]] CK_RV create(CK_SESSION_HANDLE session, const RsaKey& key, std::size_t parts,
                               CK_OBJECT_HANDLE* handle);

  private:
    void add_unless_given(const CK_ATTRIBUTE& entry);

    CK_OBJECT_CLASS object_class_;
    CK_KEY_TYPE key_type_ = CKK_RSA;
    CK_BBOOL is_private_;
    std::vector<CK_ATTRIBUTE> entries_;
};

} // namespace simcard
