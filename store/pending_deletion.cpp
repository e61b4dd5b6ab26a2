// Removal of what an unfinished request left behind.
#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"

namespace {

constexpr int DELETION_FAILED = 1;

// Destroys the next object of the open search that carries the pending prefix and adds it to those that are gone. One
// that is found among them was not destroyed, whatever the module said, and would be found without end.
CK_RV destroyNextPending(char* title, std::vector<CK_OBJECT_HANDLE>& gone) {
    for (;;) {
        CK_OBJECT_HANDLE object = 0;
        CK_ULONG found = 0;
        if (FindObjects(nullptr, title, zv::hSession, &object, 1, &found) != CKR_OK) return zv::rv;
        if (found == 0) return CKR_OK;
        char label[8193] = {};
        CK_ATTRIBUTE entry = {CKA_LABEL, label, sizeof label - 1};
        if (!zv::isTolerated(GetAttributeValue(nullptr, title, zv::hSession, object, &entry, 1)))
            return zv::rv;
        if (std::strncmp(label, zv::szPendingLabel, std::strlen(zv::szPendingLabel)) != 0) continue;
        if (std::find(gone.begin(), gone.end(), object) != gone.end()) return CKR_GENERAL_ERROR;
        gone.push_back(object);
        return zv::destroyObject(zv::hSession, object);
    }
}

} // namespace

int DeleteAllPending(void*) try {
    static char title[] = " .... DeleteAllPending (Objects) FUN .... ";
    for (std::vector<CK_OBJECT_HANDLE> gone;;) {
        if (FindObjectsInit(nullptr, title, zv::hSession, nullptr, 0) != CKR_OK) return DELETION_FAILED;
        zv::SearchGuard search(zv::hSession);
        const std::size_t before = gone.size();
        if (destroyNextPending(title, gone) != CKR_OK) return DELETION_FAILED;
        search.dismiss();
        // The last search stays open.
        if (gone.size() == before) return 0;
        // A destroyed object may disturb the search that found it: a new one goes on.
        if (FindObjectsFinal(nullptr, title, zv::hSession) != CKR_OK) return DELETION_FAILED;
    }
} catch (const std::bad_alloc&) {
    return DELETION_FAILED;
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
