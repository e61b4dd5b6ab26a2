// Removal of objects by their identifier, which the log calls their label.
#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/traced.h"
#include "util/text.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char DELETION_TITLE[] = "DeleteObjectByLabel";

void trace_deletion(const char* title, CK_SESSION_HANDLE session) {
    zv::trace(title, CatLtoAHex1("hSession = ", static_cast<long>(session)));
}

// The words of the log for one class. Objects of no known class have their class as the entry's length.
struct ClassName {
    const char* name;
    CK_OBJECT_CLASS length_limit;
};

ClassName name_of(CK_OBJECT_CLASS object_class) {
    switch (object_class) {
    case CKO_PRIVATE_KEY:
        return {"CKO_PRIVATE_KEY", 0};
    case CKO_PUBLIC_KEY:
        return {"CKO_PUBLIC_KEY", 0};
    case CKO_CERTIFICATE:
        return {"CKO_CERTIFICATE", 0};
    default:
        return {"object_class", object_class};
    }
}

struct ObjectEntry {
    char text[96];
    int length;
};

ObjectEntry entry_for(const ClassName& found, const char* before, const char* after = "") {
    ObjectEntry entry;
    zv::copy_text(entry.text, before);
    zv::append_text(entry.text, found.name);
    zv::append_text(entry.text, after);
    entry.length = static_cast<int>(std::min<CK_ULONG>(found.length_limit, std::strlen(entry.text)));
    return entry;
}

void log_entry(const ObjectEntry& entry) {
    WriteLog(DELETION_TITLE, entry.text, entry.length, "", 0);
}

// A failed destroy never stops the scan.
void destroy(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_OBJECT_CLASS object_class,
             const char* text) {
    const ClassName found = name_of(object_class);
    log_entry(entry_for(found, "Trovato Oggetto "));
    if (zv::destroy_object(session, object) == CKR_OK)
        return log_entry(entry_for(found, "Cancellazione Oggetto ", " effettuata"));
    const ObjectEntry failed = entry_for(found, "Errore nella cancellazione Oggetto ");
    WriteErr(DELETION_TITLE, failed.text, failed.length, CatSZtoSZ("Label = ", text), 0);
}

void report_not_deleted(const char* title, const char* text) {
    WriteErr(title, "Errore nella cancellazione", 0, CatSZtoSZ("Label = ", text), 0);
}

void log_found(const zv::SearchCall& call) {
    if (call.step != zv::SearchStep::next) return;
    if (call.result != CKR_OK)
        zv::report_code(DELETION_TITLE, call.name, call.result);
    else
        zv::trace_found(DELETION_TITLE, call.object, call.found);
}

// Data that cannot be read is passed over; a key or certificate ends the deletion.
zv::Visit delete_if_named(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, const char* wanted) {
    static constexpr char step[] = "C_GetAttributeValue";
    char id[257] = {};
    CK_OBJECT_CLASS object_class = 0;
    CK_ATTRIBUTE tmpl[] = {{CKA_ID, id, sizeof id - 1}, {CKA_CLASS, &object_class, sizeof object_class}};
    zv::trace_session(DELETION_TITLE, step, session);
    zv::rv = zv::call<&zv::Functions::C_GetAttributeValue>(session, object, tmpl, CK_ULONG{2});
    if (zv::rv != CKR_OK) {
        zv::report_code(DELETION_TITLE, step, zv::rv);
        return object_class == CKO_DATA ? zv::Visit::go_on : zv::Visit::give_up;
    }
    if (std::strstr(id, wanted) != nullptr) destroy(session, object, object_class, wanted);
    return zv::Visit::go_on;
}

} // namespace

unsigned int DeleteAnObject(unsigned long session, unsigned long obj_class, char* id) {
    static constexpr char title[] = "DeleteAnObject";
    trace_deletion(title, session);
    CK_ATTRIBUTE tmpl[] = {zv::attribute_of(CKA_CLASS, obj_class), zv::attribute(CKA_ID, zv::or_empty(id))};
    CK_OBJECT_HANDLE object = 0;
    bool none = false;
    CK_RV result = zv::find_one(session, tmpl, object, none);
    if (result == CKR_OK) {
        zv::trace(title, "Trovato Oggetto");
        result = zv::destroy_object(session, object);
    }
    if (result == CKR_OK)
        zv::trace(title, "Cancellazione effettuata");
    else
        report_not_deleted(title, id);
    return static_cast<unsigned int>(result);
}

int DeleteObjectByLabel(unsigned long session, char* text) {
    const char* wanted = zv::or_empty(text);
    const zv::Walked walked = zv::walk(
        {.session = session, .log = {.after = log_found}},
        [session, wanted](CK_OBJECT_HANDLE object) { return delete_if_named(session, object, wanted); });
    if (walked.how == zv::Walked::End::not_started || walked.how == zv::Walked::End::not_ended)
        report_not_deleted(DELETION_TITLE, wanted);
    return walked.whole() ? 0 : 1;
}

int DeleteCertAndKeys(unsigned long session, char* text, char*) {
    trace_deletion("DeleteCertAndKeys", session);
    return DeleteObjectByLabel(session, text);
}

unsigned int DeleteCertCNS(unsigned long session) {
    trace_deletion("DeleteCertCNS", session);
    char id[] = "CNS0";
    return DeleteAnObject(session, CKO_CERTIFICATE, id);
}

unsigned int DeleteCertCA(unsigned long session, char* id, char* kind) {
    zv::trace("DeleteCertCA", zv::or_empty(kind));
    return DeleteAnObject(session, CKO_CERTIFICATE, id);
}
