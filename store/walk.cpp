#include "store/walk.h"

#include "card/session.h"

namespace zv {

namespace {

// Above any number of objects that a card has room for; a search that gives more is a module's error.
constexpr int MOST_OBJECTS = 4096;

SearchCall callOf(const Search& search, SearchStep step, int round = 1, CK_OBJECT_HANDLE last = 0) {
    static constexpr const char* NAMES[] = {"C_FindObjectsInit", "C_FindObjects", "C_FindObjectsFinal"};
    return {step, NAMES[static_cast<int>(step)], search.title, search.session, round, CKR_OK, last};
}

template <typename Make> CK_RV logged(const SearchLog& log, SearchCall& made, Make make) {
    log.before(made);
    made.result = rv = make();
    log.after(made);
    return made.result;
}

// Nothing that a module says which gives more than was asked for, or objects without end, can be built on.
CK_RV findNext(SearchCall& made) {
    const CK_RV result =
        call<&Functions::C_FindObjects>(made.session, &made.object, CK_ULONG{1}, &made.found);
    if (result != CKR_OK) return result;
    return made.round <= MOST_OBJECTS || made.found == 0 ? checkFound(made.found, 1) : CKR_GENERAL_ERROR;
}

} // namespace

CK_RV checkFound(CK_ULONG found, CK_ULONG asked) {
    return found <= asked ? CKR_OK : CKR_GENERAL_ERROR;
}

CK_RV startSearch(const Search& search) {
    SearchCall made = callOf(search, SearchStep::Start);
    return logged(search.log, made, [&search] {
        return call<&Functions::C_FindObjectsInit>(search.session, search.tmpl.data(),
                                                   CK_ULONG{search.tmpl.size()});
    });
}

CK_RV endSearch(const Search& search) {
    SearchCall made = callOf(search, SearchStep::End);
    return logged(search.log, made,
                  [&search] { return call<&Functions::C_FindObjectsFinal>(search.session); });
}

void closeSearch(CK_SESSION_HANDLE session) {
    call<&Functions::C_FindObjectsFinal>(session);
}

OpenSearch::OpenSearch(const Search& search) : search_(search), open_(startSearch(search) == CKR_OK) {
    if (!open_) walked_ = {Walked::End::NotStarted, rv};
}

bool OpenSearch::next(CK_OBJECT_HANDLE& object) {
    if (!open_ || static_cast<CK_ULONG>(given_) == search_.most) return false;
    SearchCall made = callOf(search_, SearchStep::Next, ++given_, object);
    if (logged(search_.log, made, [&made] { return findNext(made); }) != CKR_OK) {
        walked_ = {Walked::End::FindFailed, made.result};
        leave(search_.exits.whenFindFails);
        return false;
    }
    object = made.object;
    return made.found == 1;
}

Walked OpenSearch::giveUp() {
    walked_ = {Walked::End::GivenUp, rv};
    leave(search_.exits.whenGivenUp);
    return walked_;
}

Walked OpenSearch::end() {
    if (open_) leave(search_.exits.atEnd);
    return walked_;
}

OpenSearch::~OpenSearch() {
    if (open_) leave(search_.exits.whenGivenUp);
}

void OpenSearch::leave(Exit exit) {
    open_ = false;
    if (exit == Exit::Closed) closeSearch(search_.session);
    if (exit == Exit::Ended && endSearch(search_) != CKR_OK) walked_ = {Walked::End::NotEnded, rv};
}

} // namespace zv
