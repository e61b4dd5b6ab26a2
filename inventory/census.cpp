#include "inventory/census.h"

#include "card/session.h"
#include "diag/report.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/numbers.h"
#include "util/text.h"

#include <cstring>
#include <string_view>

namespace zv {

namespace {

constexpr char CENSUS_TITLE[] = " .... FindAllObjects FUN             .... ";

// By class and by key type, in the standard's order.
constexpr const char* CLASSES[] = {"Dati", "Certificato", "Chiave pubblica", "Chiave privata",
                                   "Chiave segreta"};
constexpr const char* KEY_TYPES[] = {"RSA key", "DSA key", "Diffie-Hellman key"};

using CensusLine = char[96];

struct CensusObject {
    CK_OBJECT_CLASS object_class = 0;
    CK_KEY_TYPE key_type = 0;
    char label[256] = {};

    [[nodiscard]] bool read(CK_OBJECT_HANDLE object);
    void describe(CensusLine& line) const;
    [[nodiscard]] bool is_pending_key() const;
};

bool accepted(CK_RV result) {
    static constexpr char step[] = "C_GetAttributeValue";
    if (result == CKR_OK) return true;
    if (is_tolerated(result)) {
        trace(CENSUS_TITLE, step, with_hex("Errore = ", static_cast<int>(result)));
        return true;
    }
    report_failure(CENSUS_TITLE, step, result,
                   "Errore ricerca attributi degli oggetti presenti su smartcard (%s)");
    return false;
}

bool CensusObject::read(CK_OBJECT_HANDLE object) {
    char serial[513];
    int index = 0;
    const auto attribute = [&index](auto read_it) {
        trace(CENSUS_TITLE, "C_GetAttributeValue", with_decimal("Template Index = ", index++));
        return accepted(read_it());
    };
    return attribute([&] { return read_number(hSession, object, CKA_CLASS, object_class); }) &&
           attribute([&] { return read_number(hSession, object, CKA_KEY_TYPE, key_type); }) &&
           attribute([&] { return read_text(hSession, object, CKA_LABEL, label); }) &&
           attribute([&] { return read_text(hSession, object, CKA_SERIAL_NUMBER, serial); });
}

template <std::size_t N>
const char* name_of(const char* const (&names)[N], CK_ULONG number, const char* other) {
    return number < N ? names[number] : other;
}

const char* name_of_certificate(const char* label) {
    // In this order: an empty certificateLabel makes every certificate a signature certificate.
    if (std::strstr(label, certificateLabel) != nullptr) return "Certificato SOTTOSCRIZIONE";
    if (std::strstr(label, CAcertificateLabel) != nullptr) return "Certificato CA";
    return looks_like_tax_code(label) ? "Certificato AUTENTICAZIONE" : "Certificato";
}

void CensusObject::describe(CensusLine& line) const {
    copy_text(line, "* ");
    append_text(line, object_class == CKO_CERTIFICATE
                          ? name_of_certificate(label)
                          : name_of(CLASSES, object_class, "Oggetto non definito"));
    if (object_class == CKO_PUBLIC_KEY || object_class == CKO_PRIVATE_KEY) {
        append_text(line, " \tkey type: ");
        append_text(line, name_of(KEY_TYPES, key_type, "unknown key"));
    }
    append_text(line, "\r\n");
}

bool CensusObject::is_pending_key() const {
    if (object_class == CKO_PUBLIC_KEY) return std::strcmp(label, pendingLabel) == 0;
    // A fixed text here, whatever the library's own prefix is set to.
    return object_class == CKO_PRIVATE_KEY && std::string_view(label).starts_with(ZV_PENDING_PREFIX);
}

// A line goes in whole or not at all.
void add_line(std::span<char, CENSUS_SIZE> text, const CensusObject& object) {
    CensusLine line;
    object.describe(line);
    const std::size_t used = bounded_text(text.data(), text.size()).size();
    if (used + std::strlen(line) < text.size()) append_text(text.data(), text.size(), line);
}

constexpr SearchLog CENSUS_LOG = {
    .before =
        [](const SearchCall& call) {
            if (call.step == SearchStep::next) trace(CENSUS_TITLE, with_decimal("Volta = ", call.round));
            trace_call(call);
        },
    .after =
        [](const SearchCall& call) {
            report_call(call);
            if (call.step == SearchStep::next && call.result == CKR_OK)
                trace(CENSUS_TITLE, with_decimal("found = ", static_cast<long>(call.found)));
        },
};

} // namespace

Census take_census(std::span<char, CENSUS_SIZE> text) {
    trace(CENSUS_TITLE, "I N I Z I O");
    int objects = 0;
    unsigned short pending_keys = 0;
    const auto describe = [&](CK_OBJECT_HANDLE object) {
        CensusObject seen;
        if (!seen.read(object)) return Visit::give_up;
        ++objects;
        if (seen.is_pending_key()) ++pending_keys;
        add_line(text, seen);
        return Visit::go_on;
    };
    if (!walk({.session = hSession, .log = CENSUS_LOG, .title = CENSUS_TITLE}, describe).whole())
        return Census::failed;
    const Census code = census_of(objects, pending_keys != 0);
    trace(CENSUS_TITLE, "F I N E", with_hex("Ret Code = ", static_cast<int>(code)));
    return code;
}

bool looks_like_tax_code(std::string_view text) {
    if (text.size() != 16) return true;
    static constexpr std::string_view digits_at = "......00.00";
    for (std::size_t place = 0; place < digits_at.size(); ++place)
        if (is_digit(text[place]) != is_digit(digits_at[place])) return false;
    return true;
}

} // namespace zv
