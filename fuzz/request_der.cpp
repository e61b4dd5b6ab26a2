// The request as OpenSSL reads it back: what was put in comes out, in canonical DER. A line a subject attribute,
// then the lengths of modulus and exponent, then their bytes.
#include "api/state.h"
#include "card/session.h"
#include "fuzz/input.h"
#include "request/pkcs10.h"
#include "routines/api.h"
#include "store/renewal_state.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <vector>

namespace {

// As long as the modulus: another length is no signature, and ends the request.
std::string signature_of(const zv::PublicKey& key) {
    return std::string(key.size(), '\x80');
}

const zv::PublicKey* signing;

CK_RV start_signature(CK_SESSION_HANDLE, CK_MECHANISM_PTR, CK_OBJECT_HANDLE) {
    return CKR_OK;
}

CK_RV sign(CK_SESSION_HANDLE, CK_BYTE_PTR, CK_ULONG, CK_BYTE_PTR signature, CK_ULONG_PTR length) {
    const std::string bytes = signature_of(*signing);
    HOLDS(*length >= bytes.size());
    std::copy(bytes.begin(), bytes.end(), signature);
    *length = bytes.size();
    return CKR_OK;
}

using Der = std::string_view;

// Takes one value off the front; its tag, its content. Lengths are as short as they can be.
unsigned take_value(Der& der, Der& content) {
    HOLDS(der.size() >= 2);
    const auto byte_at = [&der](std::size_t i) { return static_cast<unsigned char>(der[i]); };
    const unsigned tag = byte_at(0), first = byte_at(1);
    std::size_t length = first, header = 2;
    if (first >= 0x80) {
        header += first & 0x7F;
        HOLDS(first > 0x80 && first <= 0x83 && der.size() >= header && byte_at(2) != 0);
        length = 0;
        for (std::size_t i = 2; i < header; ++i)
            length = length << 8 | byte_at(i);
        HOLDS(length >= 0x80);
    }
    HOLDS(der.size() - header >= length);
    content = der.substr(header, length);
    der.remove_prefix(header + length);
    return tag;
}

void holds_canonical(Der der) {
    while (!der.empty()) {
        Der content;
        const unsigned tag = take_value(der, content);
        if ((tag & 0x20) != 0) holds_canonical(content);
        if (tag == 0x02 && content.size() > 1)
            HOLDS(content[0] != 0 || (static_cast<unsigned char>(content[1]) & 0x80) != 0);
        HOLDS(tag != 0x02 || !content.empty());
        HOLDS(tag != 0x03 || (!content.empty() && content[0] == 0));
    }
}

struct Expected {
    int type;
    const char* oid;
    std::string_view value;
};

template <std::size_t N> Expected row(int type, const char* oid, const char (&field)[N]) {
    return {type, oid, fuzz::field_of(field).substr(0, 127)};
}

std::vector<Expected> rows_of(const datiDN& dn) {
    constexpr int UTF8 = V_ASN1_UTF8STRING, PRINTABLE = V_ASN1_PRINTABLESTRING;
    std::vector<Expected> rows = {row(PRINTABLE, "2.5.4.6", dn.country),
                                  row(UTF8, "2.5.4.10", dn.organization),
                                  row(UTF8, "2.5.4.11", dn.orgUnit[0]),
                                  row(UTF8, "2.5.4.11", dn.orgUnit[1]),
                                  row(UTF8, "2.5.4.11", dn.orgUnit[2]),
                                  row(UTF8, "2.5.4.11", dn.orgUnit[3]),
                                  row(UTF8, "2.5.4.11", dn.orgUnit[4]),
                                  row(UTF8, "2.5.4.3", dn.commonName),
                                  row(V_ASN1_IA5STRING, "1.2.840.113549.1.9.1", dn.email),
                                  row(UTF8, "2.5.4.13", dn.description),
                                  row(UTF8, "2.5.4.46", dn.dnQualifier),
                                  row(PRINTABLE, "2.5.4.5", dn.serialNumber),
                                  row(UTF8, "2.5.4.4", dn.surname),
                                  row(UTF8, "2.5.4.42", dn.givenName),
                                  row(UTF8, "2.5.4.7", dn.locality),
                                  row(UTF8, "2.5.4.12", dn.title),
                                  row(UTF8, "2.5.4.65", dn.pseudonym),
                                  row(UTF8, "2.5.4.8", dn.stateOrProvince)};
    std::erase_if(rows, [](const Expected& row) { return row.value.empty(); });
    return rows;
}

std::string_view text_of(const ASN1_STRING* value) {
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(value)),
            static_cast<std::size_t>(ASN1_STRING_length(value))};
}

void holds_subject(const X509_NAME* name, const datiDN& dn) {
    int entries = 0;
    for (const auto& [type, oid, value] : rows_of(dn)) {
        const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, entries++);
        HOLDS(entry != nullptr);
        char number[64];
        OBJ_obj2txt(number, sizeof number, X509_NAME_ENTRY_get_object(entry), 1);
        const ASN1_STRING* read = X509_NAME_ENTRY_get_data(entry);
        const std::string_view text = text_of(read);
        HOLDS(std::string_view(number) == oid && ASN1_STRING_type(read) == type);
        // A value that its field cuts ends with a whole character.
        HOLDS(value.starts_with(text) && value.size() - text.size() < 4);
    }
    HOLDS(entries == X509_NAME_entry_count(name));
}

void holds_number(const EVP_PKEY* key, const char* name, std::string_view bytes) {
    BIGNUM* read = nullptr;
    HOLDS(EVP_PKEY_get_bn_param(key, name, &read) == 1);
    BIGNUM* given = BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<int>(bytes.size()), nullptr);
    HOLDS(BN_cmp(read, given) == 0);
    BN_free(read);
    BN_free(given);
}

void read_back(const char* pem, const zv::PublicKey& key) {
    BIO* text = BIO_new_mem_buf(pem, -1);
    char *name = nullptr, *header = nullptr;
    unsigned char* der = nullptr;
    long length = 0;
    HOLDS(PEM_read_bio(text, &name, &header, &der, &length) == 1);
    holds_canonical({reinterpret_cast<const char*>(der), static_cast<std::size_t>(length)});
    const unsigned char* end = der;
    X509_REQ* request = d2i_X509_REQ(nullptr, &end, length);
    HOLDS(request != nullptr && end == der + length && X509_REQ_get_version(request) == 0);
    HOLDS(X509_REQ_get_attr_count(request) == 0);
    holds_subject(X509_REQ_get_subject_name(request), zv::dName);
    if (const EVP_PKEY* read = X509_REQ_get0_pubkey(request)) {
        holds_number(read, OSSL_PKEY_PARAM_RSA_N,
                     {reinterpret_cast<const char*>(key.modulus), key.modulus_length});
        holds_number(read, OSSL_PKEY_PARAM_RSA_E,
                     {reinterpret_cast<const char*>(key.exponent), key.exponent_length});
    }
    const ASN1_BIT_STRING* signature = nullptr;
    X509_REQ_get0_signature(request, &signature, nullptr);
    HOLDS(text_of(signature) == signature_of(key));
    X509_REQ_free(request);
    OPENSSL_free(name), OPENSSL_free(header), OPENSSL_free(der);
    BIO_free(text);
}

// A number as a card gives one: without needless zeros in front, and not empty.
void take_number(unsigned char* out, unsigned long& length, std::string_view bytes) {
    bytes.remove_prefix(std::min(bytes.find_first_not_of('\0'), bytes.size()));
    length = bytes.copy(reinterpret_cast<char*>(out), length);
    if (length == 0) out[length++] = 1;
}

bool fill_subject(fuzz::Input& input) {
    std::string text;
    for (std::string line = input.line(); !line.empty(); line = input.line())
        text += line;
    fuzz::Room name(4096, text);
    _RiempiDN(name.get(), static_cast<unsigned>(name.size()));
    zv::dName = zv::dNameRen;
    return fuzz::is_utf8(text) && text.size() < 1024;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CK_FUNCTION_LIST functions = [] {
        CK_FUNCTION_LIST list{};
        list.C_SignInit = start_signature;
        list.C_Sign = sign;
        return list;
    }();
    zv::p = &functions;
    zv::hModule = &functions;
    fuzz::Input input(data, size);
    const bool utf8 = fill_subject(input);
    zv::PublicKey key;
    const std::string_view bytes = input.bytes();
    key.exponent_length = std::min<std::size_t>(input.byte() % 33, bytes.size());
    key.modulus_length = sizeof key.modulus;
    take_number(key.exponent, key.exponent_length, input.bytes().substr(0, key.exponent_length));
    take_number(key.modulus, key.modulus_length,
                input.bytes().substr(std::min<std::size_t>(key.exponent_length, input.bytes().size())));
    signing = &key;
    char none[] = "";
    fuzz::Room pem(zv::PEM_SIZE);
    const unsigned short result = zv::complete_request(key, zv::SUBJECT_TABLE, {none, none}, pem.get());
    HOLDS(result == 0 || (result == 1 && pem.untouched()));
    HOLDS(result == 0 || rows_of(zv::dName).empty());
    if (result == 0 && utf8) read_back(pem.get(), key);
    zv::hModule = nullptr;
    return 0;
}
