#include "host/signed_request.h"

#include "host/message.h"

#include <openssl/err.h>

namespace zvhost {
namespace {

Bytes modulus_of_bare_request(const std::string& der) {
    const auto* at = reinterpret_cast<const unsigned char*>(der.data());
    const ossl::Request request(d2i_X509_REQ(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    return request ? modulus_of(X509_REQ_get0_pubkey(request.get())) : Bytes();
}

std::string content_of(const std::string& der) {
    const ossl::Message message = message_in(der);
    ASN1_OCTET_STRING** content = message ? CMS_get0_content(message.get()) : nullptr;
    if (content == nullptr || *content == nullptr) return {};
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(*content)),
            static_cast<std::size_t>(ASN1_STRING_length(*content))};
}

} // namespace

Bytes modulus_of_request(const std::string& request) {
    for (const ossl::PemBlock& block : blocks_of(request)) {
        if (Bytes bare = modulus_of_bare_request(block.der); !bare.empty()) return bare;
        for (const ossl::PemBlock& inner : ossl::pem_blocks(content_of(block.der)))
            if (Bytes wrapped = modulus_of_bare_request(inner.der); !wrapped.empty()) return wrapped;
    }
    return {};
}

bool is_request(const std::string& text) {
    return ossl::pem_blocks(text).size() < 2 && !modulus_of_request(text).empty();
}

Bytes signer_of_request(const std::string& request) {
    for (const ossl::PemBlock& block : blocks_of(request)) {
        const ossl::Message message = message_in(block.der);
        STACK_OF(CMS_SignerInfo)* signers = message ? CMS_get0_SignerInfos(message.get()) : nullptr;
        for (const Certificate& one : certificates_in(block))
            if (sk_CMS_SignerInfo_num(signers) > 0 &&
                CMS_SignerInfo_cert_cmp(sk_CMS_SignerInfo_value(signers, 0), one.get()) == 0)
                return one.der();
    }
    return {};
}

} // namespace zvhost
