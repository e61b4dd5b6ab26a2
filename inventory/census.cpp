// FindAllObjects: what the card holds before a request, and whether a pending key is among it.
#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"

#include <cstring>
#include <string_view>

namespace {

constexpr char TITLE[] = " .... FindAllObjects FUN             .... ";
constexpr std::size_t TEXT_SIZE = 1536;

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
            return zv::read_number(zv::hSession, object, CKA_CLASS, object_class);
        case 1:
            return zv::read_number(zv::hSession, object, CKA_KEY_TYPE, key_type);
        case 2:
            return zv::read_text(zv::hSession, object, CKA_LABEL, label);
        default:
            return zv::read_text(zv::hSession, object, CKA_SERIAL_NUMBER, serial);
        }
    };
    static constexpr char step[] = "C_GetAttributeValue";
    for (int index = 0; index < 4; ++index) {
        zv::trace(TITLE, step, CatItoA("Template Index = ", index));
        const CK_RV result = read_one(index);
        if (result == CKR_OK) continue;
        if (zv::is_tolerated(result)) {
            zv::trace(TITLE, step, CatItoAHex1("Errore = ", static_cast<int>(result)));
            continue;
        }
        zv::report_code(TITLE, step, result);
        zv::report_sentence("Errore ricerca attributi degli oggetti presenti su smartcard (%s)", result);
        return false;
    }
    return true;
}

const char* name_of_certificate(const char* label) {
    // In this order: an empty certificateLabel makes every certificate a signature certificate.
    if (std::strstr(label, zv::certificateLabel) != nullptr) return "Certificato SOTTOSCRIZIONE";
    if (std::strstr(label, zv::CAcertificateLabel) != nullptr) return "Certificato CA";
    return isCodFisc(const_cast<char*>(label)) == 1 ? "Certificato AUTENTICAZIONE" : "Certificato";
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
    if (object_class == CKO_PUBLIC_KEY) return std::strcmp(label, zv::pendingLabel) == 0;
    // A fixed text here, whatever the library's own prefix is set to.
    return object_class == CKO_PRIVATE_KEY && std::string_view(label).starts_with("pending_");
}

// A line goes in whole or not at all.
void add_line(char* text, const Description& description) {
    char line[96] = "* ";
    zv::append_text(line, description.name);
    if (description.key_type[0] != '\0') zv::append_text(line, " \tkey type: ");
    zv::append_text(line, description.key_type);
    zv::append_text(line, "\r\n");
    const std::size_t used = zv::bounded_text(text, TEXT_SIZE).size();
    if (used + std::strlen(line) < TEXT_SIZE) zv::append_text(text, TEXT_SIZE, line);
}

int summary(int objects, unsigned short pending_keys) {
    if (pending_keys != 0) return objects < 3 ? 3 : 4;
    return objects > 0 ? 2 : 0;
}

constexpr zv::SearchLog CENSUS_LOG = {
    .before =
        [](const zv::SearchCall& call) {
            if (call.step == zv::SearchStep::next) zv::trace(TITLE, CatItoA("Volta = ", call.round));
            zv::trace_call(call);
        },
    .after =
        [](const zv::SearchCall& call) {
            zv::report_call(call);
            if (call.step == zv::SearchStep::next && call.result == CKR_OK)
                zv::trace(TITLE, CatLtoA("found = ", static_cast<long>(call.found)));
        },
};

} // namespace

int FindAllObjects(unsigned long, char* text) {
    zv::trace(TITLE, "I N I Z I O");
    int objects = 0;
    unsigned short pending_keys = 0;
    const zv::Walked walked =
        zv::walk({.session = zv::hSession, .log = CENSUS_LOG, .title = TITLE}, [&](CK_OBJECT_HANDLE object) {
            CensusObject seen;
            if (!seen.read(object)) return zv::Visit::give_up;
            ++objects;
            if (seen.is_pending_key()) ++pending_keys;
            add_line(text, seen.describe());
            return zv::Visit::go_on;
        });
    if (!walked.whole()) return ZV_FAILED;
    const int code = summary(objects, pending_keys);
    zv::trace(TITLE, "F I N E", CatItoAHex1("Ret Code = ", code));
    return code;
}

int isCodFisc(char* text) {
    const std::string_view shape = zv::or_empty(text);
    // Whatever has another length passes: most authentication certificates have other labels.
    if (shape.size() != 16) return 1;
    static constexpr std::string_view digits_at = "......00.00";
    for (std::size_t place = 0; place < digits_at.size(); ++place)
        if (zv::is_digit(shape[place]) != zv::is_digit(digits_at[place])) return 0;
    return 1;
}
