#pragma once

#include "request/pkcs10.h"

#include <string_view>

// Certificate requests: each takes who to log in again and a buffer of PEM_SIZE for the request. They return 0 or
// ZV_FAILED, with szSockMsg set, and throw without memory.
namespace zv {

// For the pending pair of a card that is not a services card; generates it when there is none.
[[nodiscard]] unsigned short request_for_pending_pair(const LoginData& login, char* pem_out);

// For the pair that a services card was made with; marks the card.
[[nodiscard]] unsigned short request_for_own_pair(const LoginData& login, char* pem_out);

// The one way in from above: takes the census, discards an old pending pair when asked to, has the request made and
// closes the session. 0, with nothing done, without a session. Does not throw.
[[nodiscard]] unsigned short request_certificate(const LoginData& login, std::string_view card_type,
                                                 char* pem_out);

} // namespace zv
