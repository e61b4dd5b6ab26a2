#include "store/deletion.h"

#include "card/session.h"
#include "diag/log.h"
#include "diag/report.h"
#include "store/objects.h"
#include "store/traced.h"
#include "util/numbers.h"
#include "util/text.h"
#include "zvConstants.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr char DELETION_TITLE[] = "DeleteObjectByLabel";

void trace_deletion(const char* title, CK_SESSION_HANDLE session) {
    zv::trace(title, zv::with_hex("hSession = ", static_cast<long>(session)));
}

// What is logged of an object of one class. Objects of no known class have their class as the entry's length.
struct ObjectEntry {
    ObjectEntry(const char* before, CK_OBJECT_CLASS object_class, const char* after = "") {
        static constexpr const char* names[] = {"CKO_CERTIFICATE", "CKO_PUBLIC_KEY", "CKO_PRIVATE_KEY"};
        const bool known = object_class >= CKO_CERTIFICATE && object_class <= CKO_PRIVATE_KEY;
        const char* name = known ? names[object_class - CKO_CERTIFICATE] : "object_class";
        length = static_cast<std::size_t>(std::snprintf(text, sizeof text, "%s%s%s", before, name, after));
        if (!known && object_class != 0) length = std::min(length, static_cast<std::size_t>(object_class));
    }
    [[nodiscard]] std::string_view shown() const { return {text, length}; }

    char text[96];
    std::size_t length = 0;
};

void log_entry(const ObjectEntry& entry) {
    zv::write_entry(DELETION_TITLE, entry.shown(), "");
}

// A failed destroy never stops the scan.
void destroy(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_OBJECT_CLASS object_class,
             const char* text) {
    log_entry({"Trovato Oggetto ", object_class});
    if (zv::destroy_object(session, object) == CKR_OK)
        return log_entry({"Cancellazione Oggetto ", object_class, " effettuata"});
    const ObjectEntry failed("Errore nella cancellazione Oggetto ", object_class);
    zv::write_entry(DELETION_TITLE, failed.shown(), zv::join("Label = ", text).text);
}

void report_not_deleted(const char* title, const char* text) {
    zv::trace(title, "Errore nella cancellazione", zv::join("Label = ", text));
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
    return delete_first(session, CKO_CERTIFICATE, ZV_OWN_PAIR);
}

CK_RV zv::delete_authority_certificate(CK_SESSION_HANDLE session, const char* id, const char* kind) {
    trace("DeleteCertCA", kind);
    return delete_first(session, CKO_CERTIFICATE, id);
}
