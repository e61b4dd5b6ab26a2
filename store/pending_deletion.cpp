// Removal of what an unfinished request left behind.
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"

namespace {

constexpr int DELETION_FAILED = 1;

// Destroys the next object of the open search that carries the pending prefix. destroyed is false when none
// is left.
CK_RV destroyNextPending(char* title, bool& destroyed) {
    for (destroyed = false; !destroyed;) {
        CK_OBJECT_HANDLE object = 0;
        CK_ULONG found = 0;
        if (FindObjects(nullptr, title, zv::hSession, &object, 1, &found) != CKR_OK) return zv::rv;
        if (found == 0) return CKR_OK;
        char label[8193] = {};
        CK_ATTRIBUTE entry = {CKA_LABEL, label, sizeof label - 1};
        if (!zv::isTolerated(GetAttributeValue(nullptr, title, zv::hSession, object, &entry, 1)))
            return zv::rv;
        if (std::strncmp(label, zv::szPendingLabel, std::strlen(zv::szPendingLabel)) != 0) continue;
        if (zv::destroyObject(zv::hSession, object) != CKR_OK) return zv::rv;
        destroyed = true;
    }
    return CKR_OK;
}

} // namespace

int DeleteAllPending(void*) {
    static char title[] = " .... DeleteAllPending (Objects) FUN .... ";
    for (;;) {
        if (FindObjectsInit(nullptr, title, zv::hSession, nullptr, 0) != CKR_OK) return DELETION_FAILED;
        zv::SearchGuard search(zv::hSession);
        bool destroyed = false;
        if (destroyNextPending(title, destroyed) != CKR_OK) return DELETION_FAILED;
        search.dismiss();
        // The last search stays open.
        if (!destroyed) return 0;
        // A destroyed object may disturb the search that found it: a new one goes on.
        if (FindObjectsFinal(nullptr, title, zv::hSession) != CKR_OK) return DELETION_FAILED;
    }
}

int DeleteAllPending32(char* library, char* pin, unsigned int slotIndex, void*) {
    static constexpr char title[] = "DeleteAllPending32";
    zv::trace(title, "I N I Z I O");
    if (DeleteAnObject(zv::hSession, CKO_PUBLIC_KEY, zv::pendingLabel) != 0) return DELETION_FAILED;
    if (DeleteAnObject(zv::hSession, CKO_PRIVATE_KEY, zv::pendingLabel) != 0) return DELETION_FAILED;
    finalizza();
    if (inizializza(library, pin, slotIndex, nullptr, CKU_USER) != 0) return DELETION_FAILED;
    zv::trace(title, "F I N E");
    return 0;
}
