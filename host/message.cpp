#include "host/message.h"

#include "lenient/mended.h"

#include <openssl/err.h>

#include <algorithm>

namespace zvhost {
namespace {

std::string from_base64(const std::string& text) {
    const ossl::Owner<EVP_ENCODE_CTX, EVP_ENCODE_CTX_free> decoder(EVP_ENCODE_CTX_new());
    std::string out(text.size() + 3, '\0');
    auto* to = reinterpret_cast<unsigned char*>(out.data());
    const auto* from = reinterpret_cast<const unsigned char*>(text.data());
    int body = 0;
    int rest = 0;
    EVP_DecodeInit(decoder.get());
    if (EVP_DecodeUpdate(decoder.get(), to, &body, from, static_cast<int>(text.size())) < 0) return {};
    if (EVP_DecodeFinal(decoder.get(), to + body, &rest) < 0) return {};
    out.resize(static_cast<std::size_t>(body) + static_cast<std::size_t>(rest));
    return out;
}

// Where the bytes of a certificate out of a message stand in it; what OpenSSL has is a copy of the readable ones.
Certificate original(X509& copy, const std::string& message) {
    unsigned char* data = nullptr;
    const int length = i2d_X509(&copy, &data);
    const Bytes bytes(data, data + std::max(length, 0));
    OPENSSL_free(data);
    const Bytes whole(message.begin(), message.end());
    const Bytes readable = lenient::mended(whole);
    const auto found = std::search(readable.begin(), readable.end(), bytes.begin(), bytes.end());
    const auto at = whole.begin() + (found - readable.begin());
    if (found == readable.end()) return whole == readable ? certificate_from(bytes) : Certificate();
    return certificate_from({at, at + static_cast<std::ptrdiff_t>(bytes.size())});
}

} // namespace

std::vector<ossl::PemBlock> blocks_of(const std::string& text) {
    if (auto framed = ossl::pem_blocks(text); !framed.empty()) return framed;
    constexpr char sequence = 0x30;
    if (!text.empty() && text.front() == sequence && text.find('\0') != std::string::npos)
        return {{{}, text}};
    if (std::string der = from_base64(text); !der.empty()) return {{{}, std::move(der)}};
    return {{{}, text}};
}

ossl::Message message_in(const std::string& der) {
    const Bytes readable = lenient::mended({reinterpret_cast<const unsigned char*>(der.data()), der.size()});
    const ossl::Bio bio(BIO_new_mem_buf(readable.data(), static_cast<int>(readable.size())));
    ossl::Message message(d2i_CMS_bio(bio.get(), nullptr));
    ERR_clear_error();
    return message;
}

std::vector<Certificate> certificates_in(const ossl::PemBlock& block) {
    std::vector<Certificate> found;
    if (Certificate single = certificate_from({block.der.begin(), block.der.end()})) {
        found.push_back(std::move(single));
        return found;
    }
    const ossl::Message message = message_in(block.der);
    const ossl::Certificates bundle(message ? CMS_get1_certs(message.get()) : nullptr);
    for (int i = 0; i < sk_X509_num(bundle.get()); ++i)
        if (Certificate one = original(*sk_X509_value(bundle.get(), i), block.der))
            found.push_back(std::move(one));
    ERR_clear_error();
    return found;
}

} // namespace zvhost
