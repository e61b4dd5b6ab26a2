// The C face of this folder.
#include "card/session.h"
#include "routines/store.h"
#include "store/deletion.h"
#include "store/marker.h"
#include "store/pending_deletion.h"
#include "store/pending_pair.h"
#include "store/traced.h"
#include "util/guarded.h"
#include "util/text.h"

CK_RV FindObjectsInit(void*, char* title, unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count) {
    return zv::start_search({.session = session, .tmpl = {tmpl, count}, .log = zv::TRACED, .title = title});
}

CK_RV FindObjects(void*, char* title, unsigned long session, unsigned long* handles, unsigned long max_count,
                  unsigned long* found) {
    return zv::find_traced(title, session, {handles, max_count}, found);
}

CK_RV FindObjectsFinal(void*, char* title, unsigned long session) {
    return zv::end_search({.session = session, .log = zv::TRACED, .title = title});
}

CK_RV GetAttributeValue(void*, char* title, unsigned long session, unsigned long object, CK_ATTRIBUTE* tmpl,
                        unsigned long count) {
    return zv::read_traced(title, session, object, {tmpl, count});
}

unsigned long FindAnObject(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                           unsigned long* object) {
    const zv::Found found = zv::find_one(session, {tmpl, count});
    if (object != nullptr && found.object != 0) *object = found.object;
    return found.code;
}

unsigned int DeleteAnObject(unsigned long session, unsigned long obj_class, char* id) {
    return static_cast<unsigned int>(zv::delete_first(session, obj_class, zv::or_empty(id)));
}

int DeleteObjectByLabel(unsigned long session, char* text) {
    return zv::delete_all_with(session, zv::or_empty(text)) ? 0 : ZV_FAILED;
}

int DeleteCertAndKeys(unsigned long session, char* text, char*) {
    return zv::delete_certificate_and_keys(session, zv::or_empty(text)) ? 0 : ZV_FAILED;
}

unsigned int DeleteCertCNS(unsigned long session) {
    return static_cast<unsigned int>(zv::delete_own_certificate(session));
}

unsigned int DeleteCertCA(unsigned long session, char* id, char* kind) {
    return static_cast<unsigned int>(
        zv::delete_authority_certificate(session, zv::or_empty(id), zv::or_empty(kind)));
}

int DeleteAllPending(void*) {
    return zv::guarded(false, zv::delete_pending_objects) ? 0 : ZV_FAILED;
}

int DeleteAllPending32(char* library, char* pin, unsigned int slot_index, void*) {
    return zv::delete_pending_pair(slot_index, {library, pin}) ? 0 : ZV_FAILED;
}

int CheckPendingKeys(void*, bool report_missing) {
    return static_cast<int>(zv::find_pending_pair(report_missing).search);
}

unsigned int DataStore(unsigned long session, const char* label, const char* value, const char*,
                       bool modifiable, bool is_private) {
    return static_cast<unsigned int>(
        zv::write_data(session, {zv::or_empty(label), zv::or_empty(value), modifiable, is_private}));
}

unsigned int DeleteDataPendingCNS(unsigned long session, char* label) {
    return static_cast<unsigned int>(zv::delete_data(session, zv::or_empty(label)));
}
