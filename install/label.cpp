#include "install/label.h"

#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/numbers.h"
#include "util/text.h"
#include "util/trim.h"
#include "zvRenew.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

char zv::crtLabel[256];

namespace {

constexpr std::size_t LONGEST_LABEL = sizeof zv::crtLabel - 1;
constexpr char CHANGE_TITLE[] = " .... ChangeValueObject FUN          .... ";
constexpr char RECHANGE_TITLE[] = " .... RechangeValueObject FUN        .... ";
constexpr char CHANGE_STEP[] = "C_SetAttributeValue";

CK_RV change(CK_OBJECT_HANDLE object, const char* label) {
    const std::string_view text = zv::bounded_text(label, LONGEST_LABEL);
    CK_ATTRIBUTE both[] = {zv::attribute(CKA_ID, text), zv::attribute(CKA_LABEL, text)};
    return zv::rv = zv::call<&zv::Functions::C_SetAttributeValue>(zv::hSession, object, both, CK_ULONG{2});
}

CK_RV change_key(const char* name, CK_OBJECT_HANDLE key, const char* text) {
    zv::trace(CHANGE_TITLE, CHANGE_STEP, zv::with_hex(name, static_cast<long>(key)));
    return change(key, text);
}

zv::Visit change_again(CK_OBJECT_HANDLE object, const char* text) {
    if (change(object, text) == CKR_OK) return zv::Visit::go_on;
    zv::report_failure(RECHANGE_TITLE, CHANGE_STEP, zv::rv,
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

// Lower-cases the path in place.
bool is_none_of(char* module_path, std::initializer_list<const char*> names) {
    if (zv::lower_case(module_path) == nullptr) return true;
    return std::none_of(names.begin(), names.end(), [module_path](const char* name) {
        return std::strstr(module_path, name) != nullptr;
    });
}

} // namespace

void zv::label_certificate(CK_ATTRIBUTE& id, CK_ATTRIBUTE& label, const char* text) {
    const std::string_view kept = bounded_text(text, LONGEST_LABEL);
    clear(crtLabel);
    copy_text(crtLabel, kept);
    id.ulValueLen = label.ulValueLen = kept.size();
}

int zv::label_pair(const char* text) {
    trace(CHANGE_TITLE, "I N I Z I O");
    CK_RV result = change_key("hPrivateKey = ", hPrivateKey, text);
    if (result == CKR_OK && hPublicKey != 0) result = change_key("hPublicKey = ", hPublicKey, text);
    if (result != CKR_OK)
        return Failure(CHANGE_TITLE)
            .step(CHANGE_STEP, result)
            .sentence("Errore modifica LABEL/ID oggetti presenti su smartcard (%s)", result);
    trace(CHANGE_TITLE, "F I N E");
    return 0;
}

int zv::change_labels(const char* current, const char* text) {
    trace(RECHANGE_TITLE, "I N I Z I O", zv::join("Label = ", text));
    CK_ATTRIBUTE tmpl = attribute(CKA_LABEL, or_empty(current));
    // Neither a failed call nor a failed change ends the search.
    const Search search = {.session = hSession,
                           .tmpl = {&tmpl, 1},
                           .log = {.after = report_rechange},
                           .exits = {.when_find_fails = Exit::left_open, .when_given_up = Exit::left_open}};
    const Walked walked =
        walk(search, [text](CK_OBJECT_HANDLE object) { return change_again(object, text); });
    if (!walked.whole()) return ZV_FAILED;
    trace(RECHANGE_TITLE, "F I N E", zv::join("Label = ", text));
    return 0;
}

bool zv::may_label_pair(char* module_path) {
    return is_none_of(module_path, {"incryptoki2", "bit4ipki", "bit4hipki", "cnspkcs11"});
}

// Those whose keys were not labelled, and one that must not be again.
bool zv::may_label_back(char* module_path) {
    return is_none_of(module_path, {"incryptoki2", "libbit4xpki.dylib", "cnspkcs11"});
}
