#include "store/deletion.h"

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

CK_RV zv::delete_first(CK_SESSION_HANDLE session, CK_OBJECT_CLASS object_class, const char* id) {
    static constexpr char title[] = "DeleteAnObject";
    trace_deletion(title, session);
    CK_ATTRIBUTE tmpl[] = {attribute_of(CKA_CLASS, object_class), attribute(CKA_ID, id)};
    const Found found = find_one(session, tmpl);
    CK_RV result = found.code;
    if (result == CKR_OK) {
        trace(title, "Trovato Oggetto");
        result = destroy_object(session, found.object);
    }
    if (result == CKR_OK)
        trace(title, "Cancellazione effettuata");
    else
        report_not_deleted(title, id);
    return result;
}

bool zv::delete_all_with(CK_SESSION_HANDLE session, const char* text) {
    const Walked walked =
        walk({.session = session, .log = {.after = log_found}},
             [session, text](CK_OBJECT_HANDLE object) { return delete_if_named(session, object, text); });
    if (walked.how == Walked::End::not_started || walked.how == Walked::End::not_ended)
        report_not_deleted(DELETION_TITLE, text);
    return walked.whole();
}

bool zv::delete_certificate_and_keys(CK_SESSION_HANDLE session, const char* id) {
    trace_deletion("DeleteCertAndKeys", session);
    return delete_all_with(session, id);
}

CK_RV zv::delete_own_certificate(CK_SESSION_HANDLE session) {
    trace_deletion("DeleteCertCNS", session);
    return delete_first(session, CKO_CERTIFICATE, "CNS0");
}

CK_RV zv::delete_authority_certificate(CK_SESSION_HANDLE session, const char* id, const char* kind) {
    trace("DeleteCertCA", kind);
    return delete_first(session, CKO_CERTIFICATE, id);
}
