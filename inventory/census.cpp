#include "inventory/census.h"

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"

#include <cstring>
#include <string_view>

namespace zv {

namespace {

constexpr char CENSUS_TITLE[] = " .... FindAllObjects FUN             .... ";

struct Description {
    const char* name = "";
    const char* key_type = "";
};

struct CensusObject {
    CK_OBJECT_CLASS object_class = 0;
    CK_KEY_TYPE key_type = 0;
    char label[256] = {};

    [[nodiscard]] bool read(CK_OBJECT_HANDLE object);
    [[nodiscard]] Description describe() const;
    [[nodiscard]] bool is_pending_key() const;
};

bool CensusObject::read(CK_OBJECT_HANDLE object) {
    const auto read_one = [this, object](int index) {
        char serial[513];
        switch (index) {
        case 0:
            return read_number(hSession, object, CKA_CLASS, object_class);
        case 1:
            return read_number(hSession, object, CKA_KEY_TYPE, key_type);
        case 2:
            return read_text(hSession, object, CKA_LABEL, label);
        default:
            return read_text(hSession, object, CKA_SERIAL_NUMBER, serial);
        }
    };
    static constexpr char step[] = "C_GetAttributeValue";
    for (int index = 0; index < 4; ++index) {
        trace(CENSUS_TITLE, step, CatItoA("Template Index = ", index));
        const CK_RV result = read_one(index);
        if (result == CKR_OK) continue;
        if (is_tolerated(result)) {
            trace(CENSUS_TITLE, step, CatItoAHex1("Errore = ", static_cast<int>(result)));
            continue;
        }
        report_code(CENSUS_TITLE, step, result);
        report_sentence("Errore ricerca attributi degli oggetti presenti su smartcard (%s)", result);
        return false;
    }
    return true;
}

const char* name_of_certificate(const char* label) {
    // In this order: an empty certificateLabel makes every certificate a signature certificate.
    if (std::strstr(label, certificateLabel) != nullptr) return "Certificato SOTTOSCRIZIONE";
    if (std::strstr(label, CAcertificateLabel) != nullptr) return "Certificato CA";
    return looks_like_tax_code(label) ? "Certificato AUTENTICAZIONE" : "Certificato";
}

const char* name_of_key_type(CK_KEY_TYPE type) {
    switch (type) {
    case CKK_RSA:
        return "RSA key";
    case CKK_DSA:
        return "DSA key";
    case CKK_DH:
        return "Diffie-Hellman key";
    default:
        return "unknown key";
    }
}

Description CensusObject::describe() const {
    switch (object_class) {
    case CKO_DATA:
        return {"Dati", ""};
    case CKO_CERTIFICATE:
        return {name_of_certificate(label), ""};
    case CKO_PUBLIC_KEY:
        return {"Chiave pubblica", name_of_key_type(key_type)};
    case CKO_PRIVATE_KEY:
        return {"Chiave privata", name_of_key_type(key_type)};
    case CKO_SECRET_KEY:
        return {"Chiave segreta", ""};
    default:
        return {"Oggetto non definito", ""};
    }
}

bool CensusObject::is_pending_key() const {
    if (object_class == CKO_PUBLIC_KEY) return std::strcmp(label, pendingLabel) == 0;
    // A fixed text here, whatever the library's own prefix is set to.
    return object_class == CKO_PRIVATE_KEY && std::string_view(label).starts_with("pending_");
}

// A line goes in whole or not at all.
void add_line(std::span<char, CENSUS_SIZE> text, const Description& description) {
    char line[96] = "* ";
    append_text(line, description.name);
    if (description.key_type[0] != '\0') append_text(line, " \tkey type: ");
    append_text(line, description.key_type);
    append_text(line, "\r\n");
    const std::size_t used = bounded_text(text.data(), text.size()).size();
    if (used + std::strlen(line) < text.size()) append_text(text.data(), text.size(), line);
}

constexpr SearchLog CENSUS_LOG = {
    .before =
        [](const SearchCall& call) {
            if (call.step == SearchStep::next) trace(CENSUS_TITLE, CatItoA("Volta = ", call.round));
            trace_call(call);
        },
    .after =
        [](const SearchCall& call) {
            report_call(call);
            if (call.step == SearchStep::next && call.result == CKR_OK)
                trace(CENSUS_TITLE, CatLtoA("found = ", static_cast<long>(call.found)));
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
        add_line(text, seen.describe());
        return Visit::go_on;
    };
    if (!walk({.session = hSession, .log = CENSUS_LOG, .title = CENSUS_TITLE}, describe).whole())
        return Census::failed;
    const Census code = census_of(objects, pending_keys != 0);
    trace(CENSUS_TITLE, "F I N E", CatItoAHex1("Ret Code = ", static_cast<int>(code)));
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
