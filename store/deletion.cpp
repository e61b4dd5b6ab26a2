// Removal of objects by their identifier, which the log calls their label.
#include <algorithm>
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "util/text.h"

namespace {

constexpr char DELETION_TITLE[] = "DeleteObjectByLabel";

void traceDeletion(const char* title, CK_SESSION_HANDLE session) {
    zv::trace(title, CatLtoAHex1("hSession = ", static_cast<long>(session)));
}

int failDeletion(const char* text) {
    WriteErr(DELETION_TITLE, "Errore nella cancellazione", 0, CatSZtoSZ("Label = ", text), 0);
    return 1;
}

// The words of the log for one class. Objects of no known class have their class as the entry's length.
struct ClassName {
    const char* name;
    CK_OBJECT_CLASS lengthLimit;
};

ClassName nameOf(CK_OBJECT_CLASS objectClass) {
    switch (objectClass) {
    case CKO_PRIVATE_KEY:
        return {"CKO_PRIVATE_KEY", 0};
    case CKO_PUBLIC_KEY:
        return {"CKO_PUBLIC_KEY", 0};
    case CKO_CERTIFICATE:
        return {"CKO_CERTIFICATE", 0};
    default:
        return {"object_class", objectClass};
    }
}

struct ObjectEntry {
    char text[96];
    int length;
};

ObjectEntry entryFor(const ClassName& found, const char* before, const char* after = "") {
    ObjectEntry entry;
    zv::copyText(entry.text, before);
    zv::appendText(entry.text, found.name);
    zv::appendText(entry.text, after);
    entry.length = static_cast<int>(std::min<CK_ULONG>(found.lengthLimit, std::strlen(entry.text)));
    return entry;
}

void logEntry(const ObjectEntry& entry) {
    WriteLog(DELETION_TITLE, entry.text, entry.length, "", 0);
}

// A failed destroy never stops the scan.
void destroy(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_OBJECT_CLASS objectClass,
             const char* text) {
    const ClassName found = nameOf(objectClass);
    logEntry(entryFor(found, "Trovato Oggetto "));
    if (zv::destroyObject(session, object) == CKR_OK)
        return logEntry(entryFor(found, "Cancellazione Oggetto ", " effettuata"));
    const ObjectEntry failed = entryFor(found, "Errore nella cancellazione Oggetto ");
    WriteErr(DELETION_TITLE, failed.text, failed.length, CatSZtoSZ("Label = ", text), 0);
}

} // namespace

unsigned int DeleteAnObject(unsigned long session, unsigned long objClass, char* id) {
    static constexpr char title[] = "DeleteAnObject";
    traceDeletion(title, session);
    CK_ATTRIBUTE tmpl[] = {zv::attributeOf(CKA_CLASS, objClass), zv::attribute(CKA_ID, zv::orEmpty(id))};
    CK_OBJECT_HANDLE object = 0;
    CK_RV result = FindAnObject(session, tmpl, 2, &object);
    if (result == CKR_OK) {
        zv::trace(title, "Trovato Oggetto");
        result = zv::destroyObject(session, object);
    }
    if (result == CKR_OK)
        zv::trace(title, "Cancellazione effettuata");
    else
        WriteErr(title, "Errore nella cancellazione", 0, CatSZtoSZ("Label = ", id), 0);
    return static_cast<unsigned int>(result);
}

int DeleteObjectByLabel(unsigned long session, char* text) {
    const char* wanted = zv::orEmpty(text);
    if (zv::startSearch(session) != CKR_OK) return failDeletion(wanted);
    zv::SearchGuard search(session);
    CK_OBJECT_HANDLE object = 0;
    for (;;) {
        CK_ULONG count = 0;
        if (zv::nextObject(session, object, count) != CKR_OK) {
            zv::reportCode(DELETION_TITLE, "C_FindObjects", zv::rv);
            return 1;
        }
        zv::traceFound(DELETION_TITLE, object, count);
        if (count != 1) break;

        char id[257] = {};
        CK_OBJECT_CLASS objectClass = 0;
        CK_ATTRIBUTE tmpl[] = {{CKA_ID, id, sizeof id - 1}, {CKA_CLASS, &objectClass, sizeof objectClass}};
        zv::traceSession(DELETION_TITLE, "C_GetAttributeValue", session);
        zv::rv = zv::call<&zv::Functions::C_GetAttributeValue>(session, object, tmpl, CK_ULONG{2});
        if (zv::rv != CKR_OK) {
            zv::reportCode(DELETION_TITLE, "C_GetAttributeValue", zv::rv);
            if (objectClass != CKO_DATA) return 1;
        } else if (std::strstr(id, wanted) != nullptr) {
            destroy(session, object, objectClass, wanted);
        }
    }
    search.dismiss();
    return zv::endSearch(session) == CKR_OK ? 0 : failDeletion(wanted);
}

int DeleteCertAndKeys(unsigned long session, char* text, char*) {
    traceDeletion("DeleteCertAndKeys", session);
    return DeleteObjectByLabel(session, text);
}

unsigned int DeleteCertCNS(unsigned long session) {
    traceDeletion("DeleteCertCNS", session);
    char id[] = "CNS0";
    return DeleteAnObject(session, CKO_CERTIFICATE, id);
}

unsigned int DeleteCertCA(unsigned long session, char* id, char* kind) {
    zv::trace("DeleteCertCA", zv::orEmpty(kind));
    return DeleteAnObject(session, CKO_CERTIFICATE, id);
}
