#include "simcard/authority/errors.h"

#include <openssl/err.h>

#include <array>

namespace simcard {

void fail_with_openssl_reason(const std::string& step) {
    std::array<char, 256> reason{};
    ERR_error_string_n(ERR_peek_last_error(), reason.data(), reason.size());
    ERR_clear_error();
    throw Failure(step + " failed (" + reason.data() + ").");
}

} // namespace simcard
