#include "store/walk.h"

#include "card/session.h"
#include "zvConstants.h"

namespace zv {

namespace {

SearchCall call_of(const Search& search, SearchStep step, int round = 1, CK_OBJECT_HANDLE last = 0) {
    static constexpr const char* names[] = {"C_FindObjectsInit", "C_FindObjects", "C_FindObjectsFinal"};
    return {step, names[static_cast<int>(step)], search.title, search.session, round, CKR_OK, last};
}

template <typename Make> CK_RV logged(const SearchLog& log, SearchCall& made, Make make) {
    log.before(made);
    made.result = rv = make();
    log.after(made);
    return made.result;
}

// Nothing that a module says which gives more than was asked for, or objects without end, can be built on.
CK_RV find_next(SearchCall& made) {
    const CK_RV result =
        call<&Functions::C_FindObjects>(made.session, &made.object, CK_ULONG{1}, &made.found);
    if (result != CKR_OK) return result;
    return made.round <= ZV_OBJECTS_MAX || made.found == 0 ? check_found(made.found, 1) : CKR_GENERAL_ERROR;
}

} // namespace

CK_RV check_found(CK_ULONG found, CK_ULONG asked) {
    return found <= asked ? CKR_OK : CKR_GENERAL_ERROR;
}

CK_RV start_search(const Search& search) {
    SearchCall made = call_of(search, SearchStep::start);
    return logged(search.log, made, [&search] {
        return call<&Functions::C_FindObjectsInit>(search.session, search.tmpl.data(),
                                                   CK_ULONG{search.tmpl.size()});
    });
}

CK_RV end_search(const Search& search) {
    SearchCall made = call_of(search, SearchStep::end);
    return logged(search.log, made,
                  [&search] { return call<&Functions::C_FindObjectsFinal>(search.session); });
}

void close_search(CK_SESSION_HANDLE session) {
    call<&Functions::C_FindObjectsFinal>(session);
}

OpenSearch::OpenSearch(const Search& search) : search_(search), open_(start_search(search) == CKR_OK) {
    if (!open_) walked_ = {Walked::End::not_started, rv};
}

bool OpenSearch::next(CK_OBJECT_HANDLE& object) {
    if (!open_ || static_cast<CK_ULONG>(given_) == search_.most) return false;
    SearchCall made = call_of(search_, SearchStep::next, ++given_, object);
    if (logged(search_.log, made, [&made] { return find_next(made); }) != CKR_OK) {
        walked_ = {Walked::End::find_failed, made.result};
        leave(search_.exits.when_find_fails);
        return false;
    }
    object = made.object;
    return made.found == 1;
}

Walked OpenSearch::give_up() {
    walked_ = {Walked::End::given_up, rv};
    leave(search_.exits.when_given_up);
    return walked_;
}

Walked OpenSearch::end() {
    if (open_) leave(search_.exits.at_end);
    return walked_;
}

OpenSearch::~OpenSearch() {
    if (open_) leave(search_.exits.when_given_up);
}

void OpenSearch::leave(Exit exit) {
    open_ = false;
    if (exit == Exit::closed) close_search(search_.session);
    if (exit == Exit::ended && end_search(search_) != CKR_OK) walked_ = {Walked::End::not_ended, rv};
}

} // namespace zv
