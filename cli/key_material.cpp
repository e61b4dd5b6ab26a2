#include "cli/key_material.h"

#include "cli/outcome.h"
#include "lenient/mended.h"
#include "ossl/owners.h"
#include "ossl/pem_blocks.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <openssl/core_names.h>
#include <openssl/err.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>

namespace cli {
namespace {

constexpr std::size_t LARGEST_FILE = std::size_t{1024} * 1024;

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

// The blocks of a file: framed ones, else the file itself as DER, or what it is in base64.
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

void add_certificates(const ossl::PemBlock& block, std::vector<Certificate>& found) {
    if (Certificate single = certificate_from({block.der.begin(), block.der.end()})) {
        found.push_back(std::move(single));
        return;
    }
    const ossl::Message message = message_in(block.der);
    const ossl::Certificates bundle(message ? CMS_get1_certs(message.get()) : nullptr);
    for (int i = 0; i < sk_X509_num(bundle.get()); ++i)
        if (Certificate one = original(*sk_X509_value(bundle.get(), i), block.der))
            found.push_back(std::move(one));
    ERR_clear_error();
}

Bytes modulus_of_key(EVP_PKEY* key) {
    BIGNUM* number = nullptr;
    if (key == nullptr || EVP_PKEY_get_bn_param(key, OSSL_PKEY_PARAM_RSA_N, &number) != 1) {
        ERR_clear_error();
        return {};
    }
    const ossl::BigNumber owned(number);
    Bytes modulus(static_cast<std::size_t>(BN_num_bytes(number)));
    BN_bn2bin(number, modulus.data());
    return modulus;
}

Bytes modulus_of_bare_request(const std::string& der) {
    const auto* at = reinterpret_cast<const unsigned char*>(der.data());
    const ossl::Request request(d2i_X509_REQ(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    return request ? modulus_of_key(X509_REQ_get0_pubkey(request.get())) : Bytes();
}

std::string content_of(const std::string& der) {
    const ossl::Message message = message_in(der);
    ASN1_OCTET_STRING** content = message ? CMS_get0_content(message.get()) : nullptr;
    if (content == nullptr || *content == nullptr) return {};
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(*content)),
            static_cast<std::size_t>(ASN1_STRING_length(*content))};
}

} // namespace

std::string read_file(const std::string& path, const char* what) {
    std::ifstream file(path, std::ios::binary);
    std::string text(LARGEST_FILE + 1, '\0');
    if (file) file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file && !file.eof())
        throw Stop(Exit::refused,
                   fmt::format("{} {} cannot be read ({}).", what, path, std::strerror(errno)));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > LARGEST_FILE)
        throw Stop(Exit::refused, fmt::format("{} {} is larger than 1 MiB.", what, path));
    return text;
}

std::vector<Certificate> certificates_in_file(const std::string& path) {
    std::vector<Certificate> found;
    for (const ossl::PemBlock& block : blocks_of(read_file(path, "The file")))
        add_certificates(block, found);
    if (found.empty()) throw Stop(Exit::refused, fmt::format("There is no certificate in {}.", path));
    return found;
}

Certificate certificate_from(const Bytes& der) {
    Bytes whole = without_padding(der);
    const Bytes readable = lenient::mended(whole);
    const unsigned char* at = readable.data();
    X509* read = readable.empty() ? nullptr : d2i_X509(nullptr, &at, static_cast<long>(readable.size()));
    ERR_clear_error();
    return {std::move(whole), read};
}

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
        std::vector<Certificate> held;
        add_certificates(block, held);
        for (const Certificate& one : held)
            if (sk_CMS_SignerInfo_num(signers) > 0 &&
                CMS_SignerInfo_cert_cmp(sk_CMS_SignerInfo_value(signers, 0), one.get()) == 0)
                return one.der();
    }
    return {};
}

Bytes modulus_of(X509& certificate) {
    return modulus_of_key(X509_get0_pubkey(&certificate));
}

Bytes without_padding(const Bytes& stored) {
    const unsigned char* at = stored.data();
    long length = 0;
    int tag = 0;
    int type = 0;
    const int head = ASN1_get_object(&at, &length, &tag, &type, static_cast<long>(stored.size()));
    ERR_clear_error();
    if (head != V_ASN1_CONSTRUCTED) return {};
    return {stored.data(), at + length};
}

std::string base64_of(const Bytes& bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string why_not_storable(const Certificate& certificate) {
    const EVP_PKEY* key = X509_get0_pubkey(certificate.get());
    if (key == nullptr || EVP_PKEY_is_a(key, "RSA") != 1) return "its key is not an RSA key";
    if (EVP_PKEY_get_bits(key) > ZV_KEY_BITS)
        return fmt::format("its key has more than {} bits", ZV_KEY_BITS);
    for (X509_NAME* name :
         {X509_get_subject_name(certificate.get()), X509_get_issuer_name(certificate.get())})
        if (i2d_X509_NAME(name, nullptr) > ZVC_CARD_NAME_SIZE)
            return fmt::format("its subject or issuer has more than {} bytes", ZVC_CARD_NAME_SIZE);
    if (base64_of(certificate.der()).size() > ZV_CERT_TEXT_MAX) return "it is too large";
    return {};
}

} // namespace cli
