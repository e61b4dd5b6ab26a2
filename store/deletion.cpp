// Removal of objects by their identifier, which the log calls their label.
#include <algorithm>
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/traced.h"
#include "util/text.h"

namespace {

constexpr char DELETION_TITLE[] = "DeleteObjectByLabel";

void traceDeletion(const char* title, CK_SESSION_HANDLE session) {
    zv::trace(title, CatLtoAHex1("hSession = ", static_cast<long>(session)));
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

void reportNotDeleted(const char* title, const char* text) {
    WriteErr(title, "Errore nella cancellazione", 0, CatSZtoSZ("Label = ", text), 0);
}

void logFound(const zv::SearchCall& call) {
    if (call.step != zv::SearchStep::Next) return;
    if (call.result != CKR_OK)
        zv::reportCode(DELETION_TITLE, call.name, call.result);
    else
        zv::traceFound(DELETION_TITLE, call.object, call.found);
}

// Data that cannot be read is passed over; a key or certificate ends the deletion.
zv::Visit deleteIfNamed(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, const char* wanted) {
    static constexpr char step[] = "C_GetAttributeValue";
    char id[257] = {};
    CK_OBJECT_CLASS objectClass = 0;
    CK_ATTRIBUTE tmpl[] = {{CKA_ID, id, sizeof id - 1}, {CKA_CLASS, &objectClass, sizeof objectClass}};
    zv::traceSession(DELETION_TITLE, step, session);
    zv::rv = zv::call<&zv::Functions::C_GetAttributeValue>(session, object, tmpl, CK_ULONG{2});
    if (zv::rv != CKR_OK) {
        zv::reportCode(DELETION_TITLE, step, zv::rv);
        return objectClass == CKO_DATA ? zv::Visit::GoOn : zv::Visit::GiveUp;
    }
    if (std::strstr(id, wanted) != nullptr) destroy(session, object, objectClass, wanted);
    return zv::Visit::GoOn;
}

} // namespace

unsigned int DeleteAnObject(unsigned long session, unsigned long objClass, char* id) {
    static constexpr char title[] = "DeleteAnObject";
    traceDeletion(title, session);
    CK_ATTRIBUTE tmpl[] = {zv::attributeOf(CKA_CLASS, objClass), zv::attribute(CKA_ID, zv::orEmpty(id))};
    CK_OBJECT_HANDLE object = 0;
    bool none = false;
    CK_RV result = zv::findOne(session, tmpl, object, none);
    if (result == CKR_OK) {
        zv::trace(title, "Trovato Oggetto");
        result = zv::destroyObject(session, object);
    }
    if (result == CKR_OK)
        zv::trace(title, "Cancellazione effettuata");
    else
        reportNotDeleted(title, id);
    return static_cast<unsigned int>(result);
}

int DeleteObjectByLabel(unsigned long session, char* text) {
    const char* wanted = zv::orEmpty(text);
    const zv::Walked walked = zv::walk(
        {.session = session, .log = {.after = logFound}},
        [session, wanted](CK_OBJECT_HANDLE object) { return deleteIfNamed(session, object, wanted); });
    if (walked.how == zv::Walked::End::NotStarted || walked.how == zv::Walked::End::NotEnded)
        reportNotDeleted(DELETION_TITLE, wanted);
    return walked.whole() ? 0 : 1;
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
