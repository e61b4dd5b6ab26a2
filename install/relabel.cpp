// Identifier and label of the pending pair: the final ones on storing, the pending ones back after a failure.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/text.h"

namespace {

constexpr std::size_t MOST_LABEL = 255;
constexpr char CHANGE_TITLE[] = " .... ChangeValueObject FUN          .... ";
constexpr char RECHANGE_TITLE[] = " .... RechangeValueObject FUN        .... ";

CK_RV change_key(const char* name, CK_OBJECT_HANDLE key, std::string_view text) {
    zv::trace(CHANGE_TITLE, "C_SetAttributeValue", CatLtoAHex1(name, static_cast<long>(key)));
    return zv::relabel_object(zv::hSession, key, text);
}

zv::Visit relabel(CK_OBJECT_HANDLE object, std::string_view text) {
    if (zv::relabel_object(zv::hSession, object, text) == CKR_OK) return zv::Visit::go_on;
    zv::report_failure(RECHANGE_TITLE, "C_SetAttributeValue", zv::rv,
                       "Errore modifica LABEL/ID oggetti presenti su scheda (%s)");
    return zv::Visit::give_up;
}

void report_rechange(const zv::SearchCall& call) {
    if (call.result == CKR_OK) return;
    const char* sentence = "Errore nella della ricerca degli oggetti sulla scheda (%s)";
    if (call.step == zv::SearchStep::start)
        sentence = "Errore nella inizializzazione della ricerca degli oggetti sulla scheda (%s)";
    if (call.step == zv::SearchStep::end)
        sentence = "Errore nella chiusura della ricerca degli oggetti sulla scheda (%s)";
    zv::report_failure(RECHANGE_TITLE, call.name, call.result, sentence);
}

} // namespace

int ChangeValueObject(void*, char* new_id) {
    zv::trace(CHANGE_TITLE, "I N I Z I O");
    const std::string_view text = zv::bounded_text(new_id, MOST_LABEL);
    CK_RV result = change_key("hPrivateKey = ", zv::hPrivateKey, text);
    if (result == CKR_OK && zv::hPublicKey != 0) result = change_key("hPublicKey = ", zv::hPublicKey, text);
    if (result == CKR_OK) {
        zv::trace(CHANGE_TITLE, "F I N E");
        return 0;
    }
    return zv::Failure(CHANGE_TITLE)
        .step("C_SetAttributeValue", result)
        .sentence("Errore modifica LABEL/ID oggetti presenti su smartcard (%s)", result);
}

int RechangeValueObject(void*, const char* current_label, char* new_text) {
    const std::string_view text = zv::bounded_text(new_text, MOST_LABEL);
    zv::trace(RECHANGE_TITLE, "I N I Z I O", CatSZtoSZ("Label = ", new_text));
    CK_ATTRIBUTE tmpl = zv::attribute(CKA_LABEL, zv::or_empty(current_label));
    // Neither a failed call nor a failed change ends the search.
    const zv::Search search = {
        .session = zv::hSession,
        .tmpl = {&tmpl, 1},
        .log = {.after = report_rechange},
        .exits = {.when_find_fails = zv::Exit::left_open, .when_given_up = zv::Exit::left_open}};
    const zv::Walked walked =
        zv::walk(search, [text](CK_OBJECT_HANDLE object) { return relabel(object, text); });
    if (!walked.whole()) return ZV_FAILED;
    zv::trace(RECHANGE_TITLE, "F I N E", CatSZtoSZ("Label = ", new_text));
    return 0;
}
