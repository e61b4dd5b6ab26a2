#include "crypt/failure.h"

#include "crypt/asn1_text.h"
#include "crypt/text.h"

#include <openssl/asn1.h>
#include <openssl/err.h>

#include <algorithm>
#include <new>

namespace zvcrypt {
namespace {

struct LastFailure {
    int code = ZVC_OK;
    std::string reason;
};

LastFailure& last_failure() {
    static auto& last = undying<LastFailure>();
    return last;
}

// A reason quotes files, labels and readers' names, which may be no text at all.
int keep(zvCryptError code, std::string_view reason) noexcept {
    last_failure().code = code;
    try {
        last_failure().reason = display_text(
            V_ASN1_UTF8STRING, {reinterpret_cast<const unsigned char*>(reason.data()), reason.size()});
    } catch (const std::bad_alloc&) {
        last_failure().reason.clear();
    }
    return code;
}

// The host's own queue of OpenSSL errors comes out as it went in.
class OpensslErrors {
  public:
    OpensslErrors() noexcept { (void)ERR_set_mark(); }
    ~OpensslErrors() { (void)ERR_pop_to_mark(); }
    OpensslErrors(const OpensslErrors&) = delete;
    OpensslErrors& operator=(const OpensslErrors&) = delete;
};

} // namespace

int run_body(const std::function<void()>& body) noexcept {
    const OpensslErrors restored;
    last_failure() = {};
    try {
        body();
        return ZVC_OK;
    } catch (const Failure& failure) {
        return keep(failure.code(), failure.reason());
    } catch (const std::bad_alloc&) {
        return keep(ZVC_ERR_INTERNAL, "Memoria esaurita");
    } catch (const std::exception& error) {
        return keep(ZVC_ERR_INTERNAL, error.what());
    }
}

void require_arguments(std::initializer_list<const void*> pointers) {
    if (std::find(pointers.begin(), pointers.end(), nullptr) != pointers.end())
        throw Failure(ZVC_ERR_ARGUMENT, "Argomento mancante nella chiamata alla libreria crittografica");
}

} // namespace zvcrypt

int kvLastError(char* buffer, int size) {
    const auto& last = zvcrypt::last_failure();
    if (buffer != nullptr && size > 0)
        (void)zvcrypt::copy_text(last.reason, {buffer, static_cast<std::size_t>(size)});
    return last.code;
}
