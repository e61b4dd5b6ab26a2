#include "store/pending_pair.h"

#include "card/session.h"
#include "diag/report.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/numbers.h"
#include "util/text.h"

#include <cstring>

namespace {

constexpr char PENDING_TITLE[] = " .... CheckPendingKeys FUN           .... ";

zv::Visit unreadable(const char* format) {
    zv::report_failure(PENDING_TITLE, "C_GetAttributeValue", zv::rv, format);
    return zv::Visit::give_up;
}

void report_no_key() {
    zv::report_sentence("Non esiste alcuna chiave privata da certificare sulla smartcard (%s)", zv::rv);
}

// Takes the object's handle when its identifier, which is read into id, contains the pending one.
zv::Visit take_if_pending(CK_OBJECT_HANDLE object, CK_OBJECT_HANDLE& pending, char (&id)[256],
                          const char* read_error) {
    if (zv::read_text(zv::hSession, object, CKA_ID, id) != CKR_OK) return unreadable(read_error);
    zv::trace(PENDING_TITLE, zv::join("Label = ", zv::pendingLabel), id);
    if (std::strstr(id, zv::pendingLabel) != nullptr) pending = object;
    return zv::Visit::go_on;
}

zv::Visit examine(CK_OBJECT_HANDLE object, zv::PendingPair& pair) {
    CK_OBJECT_CLASS object_class = 0;
    if (zv::read_number(zv::hSession, object, CKA_CLASS, object_class) != CKR_OK)
        return unreadable("Errore nella lettura tipologia oggetto sulla smartcard (%s)");
    char id[sizeof pair.id];
    if (object_class == CKO_PUBLIC_KEY)
        return take_if_pending(object, zv::hPublicKey, id,
                               "Errore lettura CKA_ID chiave pubblica sulla smartcard (%s)");
    if (object_class != CKO_PRIVATE_KEY) return zv::Visit::go_on;
    const zv::Visit said = take_if_pending(object, zv::hPrivateKey, id,
                                           "Errore lettura CKA_ID chiave privata sulla smartcard (%s)");
    if (zv::hPrivateKey == object) zv::copy_text(pair.id, id);
    return said;
}

void trace_step(const zv::SearchCall& call) {
    switch (call.step) {
    case zv::SearchStep::start:
        return zv::trace_session(PENDING_TITLE, call.name, call.session);
    case zv::SearchStep::next:
        return zv::trace(PENDING_TITLE, call.name, zv::with_decimal("Volta = ", call.round));
    case zv::SearchStep::end:
        return zv::trace(PENDING_TITLE, call.name);
    }
}

void report_step(const zv::SearchCall& call) {
    if (call.result != CKR_OK)
        return zv::report_failure(PENDING_TITLE, call.name, call.result, zv::SEARCH_ERROR);
    if (call.step == zv::SearchStep::next) zv::trace_found(PENDING_TITLE, call.object, call.found);
}

} // namespace

zv::PendingPair zv::find_pending_pair(bool report_missing) {
    PendingPair pair;
    hPrivateKey = 0;
    hPublicKey = 0;
    trace(PENDING_TITLE, "I N I Z I O");
    const Walked walked = walk({.session = hSession,
                                .log = {trace_step, report_step},
                                .exits = {.when_find_fails = Exit::left_open}},
                               [&pair](CK_OBJECT_HANDLE object) { return examine(object, pair); });
    if (!walked.whole()) return pair;
    // The private key alone decides.
    const bool found = hPrivateKey != 0;
    trace(PENDING_TITLE, "C_FindObjectsFinal", zv::with_decimal("pendingKeys = ", found ? 1 : 0));
    trace(PENDING_TITLE, found ? "F I N E" : "Chiave Pending Non trovata");
    if (!found && report_missing) report_no_key();
    pair.search = found ? PairSearch::found : PairSearch::no_private_key;
    return pair;
}

zv::PairSearch zv::find_pair_again(const char* id) {
    const PendingPair pair = find_pending_pair(true);
    if (pair.search != PairSearch::found || std::strcmp(pair.id, id) == 0) return pair.search;
    report_no_key();
    return PairSearch::no_private_key;
}
