#include "simcard/authority/request_encoding.h"

#include "ossl/pem_blocks.h"
#include "simcard/authority/errors.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <algorithm>
#include <cctype>

namespace simcard {
namespace {

constexpr char DER_SEQUENCE = 0x30; // every binary form starts with it; no base64 text of one does
constexpr const char* NOT_A_REQUEST = "The file holds no certificate request that can be read.";

ossl::PemBlock read_pem(std::string_view text) {
    auto blocks = ossl::pem_blocks(text);
    if (blocks.empty()) throw Refusal(NOT_A_REQUEST);
    return std::move(blocks.front());
}

std::string from_base64(std::string_view text) {
    std::string packed;
    std::copy_if(text.begin(), text.end(), std::back_inserter(packed),
                 [](char c) { return std::isspace(static_cast<unsigned char>(c)) == 0; });
    std::string bytes(packed.size(), '\0');
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                       reinterpret_cast<const unsigned char*>(packed.data()),
                                       static_cast<int>(packed.size()));
    const auto padding = static_cast<std::size_t>(std::count(packed.begin(), packed.end(), '='));
    if (length <= 0 || padding > 2) throw Refusal(NOT_A_REQUEST);
    bytes.resize(static_cast<std::size_t>(length) - padding);
    return bytes;
}

// Decodes with one of OpenSSL's d2i functions; an owner of nothing when the bytes are something else.
template <class Owner, class Decode> Owner decode_whole(Decode decode, const std::string& der) {
    const auto* cursor = reinterpret_cast<const unsigned char*>(der.data());
    const auto* end = cursor + der.size();
    Owner object(decode(nullptr, &cursor, static_cast<long>(der.size())));
    ERR_clear_error();
    if (object && cursor != end) throw Refusal("The file has bytes behind the end of the request.");
    return object;
}

bool is_pem(std::string_view text) {
    return text.find("-----BEGIN ") != std::string_view::npos;
}

} // namespace

ossl::Request decode_pem_request(std::string_view text) {
    const ossl::PemBlock block = read_pem(text);
    ossl::Request request;
    if (block.name == PEM_STRING_X509_REQ || block.name == PEM_STRING_X509_REQ_OLD)
        request = decode_whole<ossl::Request>(d2i_X509_REQ, block.der);
    if (!request) throw Refusal(NOT_A_REQUEST);
    return request;
}

DecodedRequest decode_request(std::string_view file) {
    if (file.empty()) throw Refusal("The request file is empty.");
    std::string der;
    if (file.front() == DER_SEQUENCE)
        der = file;
    else
        der = is_pem(file) ? read_pem(file).der : from_base64(file);
    if (auto message = decode_whole<ossl::Message>(d2i_CMS_ContentInfo, der)) return message;
    if (auto request = decode_whole<ossl::Request>(d2i_X509_REQ, der)) return request;
    throw Refusal(NOT_A_REQUEST);
}

} // namespace simcard
