#include "simcard/authority/name.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"

#include <openssl/err.h>
#include <openssl/objects.h>

#include <array>

namespace simcard {
namespace {

constexpr std::size_t CARD_NUMBER_DIGITS = 16;

std::string sha1_in_base64(const std::string& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha1(), nullptr) != 1)
        fail_with_openssl_reason("Computing a digest");
    std::array<char, std::size_t{2} * EVP_MAX_MD_SIZE> encoded{};
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(encoded.data()), digest.data(),
                    static_cast<int>(length));
    return encoded.data();
}

} // namespace

void add_to_name(X509_NAME& name, int nid, const std::string& value) {
    const auto* text = reinterpret_cast<const unsigned char*>(value.data());
    if (value.empty() || X509_NAME_add_entry_by_NID(&name, nid, MBSTRING_UTF8, text,
                                                    static_cast<int>(value.size()), -1, 0) != 1) {
        ERR_clear_error();
        throw Refusal("\"" + value + "\" cannot be the " + OBJ_nid2ln(nid) + " of a certificate's subject.");
    }
}

ossl::Name holder_name(const Holder& holder, const std::string& dn_qualifier) {
    ossl::Name name = ossl::made(ossl::Name(X509_NAME_new()));
    add_to_name(*name, NID_countryName, "IT");
    add_to_name(*name, NID_organizationName, holder.organisation);
    add_to_name(*name, NID_commonName, holder.given_name + " " + holder.surname);
    add_to_name(*name, NID_serialNumber, "TINIT-" + holder.tax_code);
    add_to_name(*name, NID_surname, holder.surname);
    add_to_name(*name, NID_givenName, holder.given_name);
    add_to_name(*name, NID_dnQualifier, dn_qualifier);
    return name;
}

ossl::Name services_card_name(const Holder& holder, const std::string& card_number) {
    std::string number = card_number;
    if (number.size() < CARD_NUMBER_DIGITS) number.insert(0, CARD_NUMBER_DIGITS - number.size(), '0');
    const std::string card = holder.tax_code + "/" + number + ".";
    ossl::Name name = ossl::made(ossl::Name(X509_NAME_new()));
    add_to_name(*name, NID_countryName, "IT");
    add_to_name(*name, NID_organizationName, holder.organisation);
    add_to_name(*name, NID_organizationalUnitName, "Carta dei servizi");
    add_to_name(*name, NID_commonName, card + sha1_in_base64(card));
    add_to_name(*name, NID_surname, holder.surname);
    add_to_name(*name, NID_givenName, holder.given_name);
    return name;
}

std::string value_in_name(const X509_NAME& name, int nid) {
    const int index = X509_NAME_get_index_by_NID(&name, nid, -1);
    if (index < 0) return {};
    unsigned char* text = nullptr;
    const int length =
        ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(&name, index)));
    if (length < 0) return {};
    std::string value(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
    OPENSSL_free(text);
    return value;
}

std::string person_in_name(const X509_NAME& name) {
    if (std::string number = value_in_name(name, NID_serialNumber); !number.empty()) return number;
    const std::string common_name = value_in_name(name, NID_commonName);
    const auto slash = common_name.find('/');
    return slash == std::string::npos ? std::string() : common_name.substr(0, slash);
}

std::string readable(const X509_NAME& name) {
    const ossl::Bio line = ossl::writing();
    constexpr unsigned long form =
        (XN_FLAG_ONELINE & ~XN_FLAG_SPC_EQ & ~ASN1_STRFLGS_ESC_MSB) | ASN1_STRFLGS_UTF8_CONVERT;
    X509_NAME_print_ex(line.get(), &name, 0, form);
    return std::string(ossl::written(*line));
}

} // namespace simcard
