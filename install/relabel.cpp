// Identifier and label of the pending pair: the final ones on storing, the pending ones back after a failure.
#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace {

constexpr int RELABEL_FAILED = 1;
constexpr std::size_t MOST_LABEL = 255;
constexpr char CHANGE_TITLE[] = " .... ChangeValueObject FUN          .... ";
constexpr char RECHANGE_TITLE[] = " .... RechangeValueObject FUN        .... ";

CK_RV changeKey(const char* name, CK_OBJECT_HANDLE key, std::string_view text) {
    zv::trace(CHANGE_TITLE, "C_SetAttributeValue", CatLtoAHex1(name, static_cast<long>(key)));
    return zv::relabelObject(zv::hSession, key, text);
}

int failRechange(const char* step, const char* format) {
    zv::reportFailure(RECHANGE_TITLE, step, zv::rv, format);
    return RELABEL_FAILED;
}

} // namespace

int ChangeValueObject(void*, char* newId) {
    zv::trace(CHANGE_TITLE, "I N I Z I O");
    const std::string_view text = zv::boundedText(newId, MOST_LABEL);
    CK_RV result = changeKey("hPrivateKey = ", zv::hPrivateKey, text);
    if (result == CKR_OK && zv::hPublicKey != 0) result = changeKey("hPublicKey = ", zv::hPublicKey, text);
    if (result == CKR_OK) {
        zv::trace(CHANGE_TITLE, "F I N E");
        return 0;
    }
    zv::reportFailure(CHANGE_TITLE, "C_SetAttributeValue", result,
                      "Errore modifica LABEL/ID oggetti presenti su smartcard (%s)");
    return RELABEL_FAILED;
}

int RechangeValueObject(void*, const char* currentLabel, char* newText) {
    const std::string_view text = zv::boundedText(newText, MOST_LABEL);
    zv::trace(RECHANGE_TITLE, "I N I Z I O", CatSZtoSZ("Label = ", newText));
    CK_ATTRIBUTE tmpl = zv::attribute(CKA_LABEL, zv::orEmpty(currentLabel));
    if (zv::startSearch(zv::hSession, &tmpl, 1) != CKR_OK)
        return failRechange("C_FindObjectsInit",
                            "Errore nella inizializzazione della ricerca degli oggetti sulla scheda (%s)");
    for (;;) {
        CK_OBJECT_HANDLE object = 0;
        CK_ULONG count = 0;
        // Neither failure ends the search.
        if (zv::nextObject(zv::hSession, object, count) != CKR_OK)
            return failRechange("C_FindObjects",
                                "Errore nella della ricerca degli oggetti sulla scheda (%s)");
        if (count != 1) break;
        if (zv::relabelObject(zv::hSession, object, text) != CKR_OK)
            return failRechange("C_SetAttributeValue",
                                "Errore modifica LABEL/ID oggetti presenti su scheda (%s)");
    }
    if (zv::endSearch(zv::hSession) != CKR_OK)
        return failRechange("C_FindObjectsFinal",
                            "Errore nella chiusura della ricerca degli oggetti sulla scheda (%s)");
    zv::trace(RECHANGE_TITLE, "F I N E", CatSZtoSZ("Label = ", newText));
    return 0;
}
