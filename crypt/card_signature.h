#pragma once

#include "crypt/bytes.h"
#include "crypt/session.h"

namespace zvcrypt {

// The card's RSA operation (CKM_RSA_PKCS). ZVC_ERR_KEY when the key cannot do it.
[[nodiscard]] Bytes sign_on_card(const Session& session, CK_OBJECT_HANDLE key, const Bytes& digest_info);

} // namespace zvcrypt
