// FindAllObjects: what the card holds before a request, and whether a pending key is among it.
#include <cstring>
#include <string_view>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"

namespace {

constexpr char TITLE[] = " .... FindAllObjects FUN             .... ";
constexpr std::size_t TEXT_SIZE = 1536;

struct Description {
    const char* name = "";
    const char* keyType = "";
};

struct CensusObject {
    CK_OBJECT_CLASS objectClass = 0;
    CK_KEY_TYPE keyType = 0;
    char label[256] = {};

    [[nodiscard]] bool read(CK_OBJECT_HANDLE object);
    [[nodiscard]] Description describe() const;
    [[nodiscard]] bool isPendingKey() const;
};

bool CensusObject::read(CK_OBJECT_HANDLE object) {
    const auto readOne = [this, object](int index) {
        char serial[513];
        switch (index) {
        case 0:
            return zv::readNumber(zv::hSession, object, CKA_CLASS, objectClass);
        case 1:
            return zv::readNumber(zv::hSession, object, CKA_KEY_TYPE, keyType);
        case 2:
            return zv::readText(zv::hSession, object, CKA_LABEL, label);
        default:
            return zv::readText(zv::hSession, object, CKA_SERIAL_NUMBER, serial);
        }
    };
    static constexpr char step[] = "C_GetAttributeValue";
    for (int index = 0; index < 4; ++index) {
        zv::trace(TITLE, step, CatItoA("Template Index = ", index));
        const CK_RV result = readOne(index);
        if (result == CKR_OK) continue;
        if (zv::isTolerated(result)) {
            zv::trace(TITLE, step, CatItoAHex1("Errore = ", static_cast<int>(result)));
            continue;
        }
        zv::reportCode(TITLE, step, result);
        zv::reportSentence("Errore ricerca attributi degli oggetti presenti su smartcard (%s)", result);
        return false;
    }
    return true;
}

const char* nameOfCertificate(const char* label) {
    // In this order: an empty certificateLabel makes every certificate a signature certificate.
    if (std::strstr(label, zv::certificateLabel) != nullptr) return "Certificato SOTTOSCRIZIONE";
    if (std::strstr(label, zv::CAcertificateLabel) != nullptr) return "Certificato CA";
    return isCodFisc(const_cast<char*>(label)) == 1 ? "Certificato AUTENTICAZIONE" : "Certificato";
}

const char* nameOfKeyType(CK_KEY_TYPE type) {
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
    switch (objectClass) {
    case CKO_DATA:
        return {"Dati", ""};
    case CKO_CERTIFICATE:
        return {nameOfCertificate(label), ""};
    case CKO_PUBLIC_KEY:
        return {"Chiave pubblica", nameOfKeyType(keyType)};
    case CKO_PRIVATE_KEY:
        return {"Chiave privata", nameOfKeyType(keyType)};
    case CKO_SECRET_KEY:
        return {"Chiave segreta", ""};
    default:
        return {"Oggetto non definito", ""};
    }
}

bool CensusObject::isPendingKey() const {
    if (objectClass == CKO_PUBLIC_KEY) return std::strcmp(label, zv::pendingLabel) == 0;
    // A fixed text here, whatever the library's own prefix is set to.
    return objectClass == CKO_PRIVATE_KEY && std::string_view(label).starts_with("pending_");
}

// A line goes in whole or not at all.
void addLine(char* text, const Description& description) {
    char line[96] = "* ";
    zv::appendText(line, description.name);
    if (description.keyType[0] != '\0') zv::appendText(line, " \tkey type: ");
    zv::appendText(line, description.keyType);
    zv::appendText(line, "\r\n");
    const std::size_t used = zv::boundedText(text, TEXT_SIZE).size();
    if (used + std::strlen(line) < TEXT_SIZE) zv::appendText(text, TEXT_SIZE, line);
}

int summary(int objects, unsigned short pendingKeys) {
    if (pendingKeys != 0) return objects < 3 ? 3 : 4;
    return objects > 0 ? 2 : 0;
}

constexpr zv::SearchLog CENSUS_LOG = {
    .before =
        [](const zv::SearchCall& call) {
            if (call.step == zv::SearchStep::Next) zv::trace(TITLE, CatItoA("Volta = ", call.round));
            zv::traceCall(call);
        },
    .after =
        [](const zv::SearchCall& call) {
            zv::reportCall(call);
            if (call.step == zv::SearchStep::Next && call.result == CKR_OK)
                zv::trace(TITLE, CatLtoA("found = ", static_cast<long>(call.found)));
        },
};

} // namespace

int FindAllObjects(unsigned long, char* text) {
    zv::trace(TITLE, "I N I Z I O");
    int objects = 0;
    unsigned short pendingKeys = 0;
    const zv::Walked walked =
        zv::walk({.session = zv::hSession, .log = CENSUS_LOG, .title = TITLE}, [&](CK_OBJECT_HANDLE object) {
            CensusObject seen;
            if (!seen.read(object)) return zv::Visit::GiveUp;
            ++objects;
            if (seen.isPendingKey()) ++pendingKeys;
            addLine(text, seen.describe());
            return zv::Visit::GoOn;
        });
    if (!walked.whole()) return ZV_FAILED;
    const int code = summary(objects, pendingKeys);
    zv::trace(TITLE, "F I N E", CatItoAHex1("Ret Code = ", code));
    return code;
}

int isCodFisc(char* text) {
    const std::string_view shape = zv::orEmpty(text);
    // Whatever has another length passes: most authentication certificates have other labels.
    if (shape.size() != 16) return 1;
    static constexpr std::string_view DIGITS_AT = "......00.00";
    for (std::size_t place = 0; place < DIGITS_AT.size(); ++place)
        if (zv::isDigit(shape[place]) != zv::isDigit(DIGITS_AT[place])) return 0;
    return 1;
}
