// Removal of what an unfinished request left behind.
#include "store/pending_deletion.h"

#include "card/full_opener.h"
#include "card/session.h"
#include "diag/report.h"
#include "store/deletion.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

bool is_pending(const char* label) {
    return std::strncmp(label, zv::szPendingLabel, std::strlen(zv::szPendingLabel)) == 0;
}

// Destroys an object with the pending prefix and adds it to those that are gone. One that is found among them was not
// destroyed, whatever the module said, and would be found without end.
zv::Visit destroy_if_pending(const char* title, CK_OBJECT_HANDLE object,
                             std::vector<CK_OBJECT_HANDLE>& gone) {
    char label[8193] = {};
    CK_ATTRIBUTE entry = {CKA_LABEL, label, sizeof label - 1};
    if (!zv::is_tolerated(zv::read_traced(title, zv::hSession, object, {&entry, 1})))
        return zv::Visit::give_up;
    if (!is_pending(label)) return zv::Visit::go_on;
    if (std::find(gone.begin(), gone.end(), object) != gone.end()) return zv::Visit::give_up;
    gone.push_back(object);
    return zv::destroy_object(zv::hSession, object) == CKR_OK ? zv::Visit::stop : zv::Visit::give_up;
}

} // namespace

bool zv::delete_pending_objects() {
    static constexpr char title[] = " .... DeleteAllPending (Objects) FUN .... ";
    const Search search = {
        .session = hSession, .log = TRACED, .exits = {.at_end = Exit::left_open}, .title = title};
    for (std::vector<CK_OBJECT_HANDLE> gone;;) {
        const std::size_t before = gone.size();
        const Walked walked = walk(
            search, [&gone](CK_OBJECT_HANDLE object) { return destroy_if_pending(title, object, gone); });
        if (!walked.whole()) return false;
        if (gone.size() == before) return true;
        // A destroyed object may disturb the search that found it: a new one goes on.
        if (end_search(search) != CKR_OK) return false;
    }
}

bool zv::delete_pending_pair(unsigned slot_index, const LoginData& login) {
    static constexpr char title[] = "DeleteAllPending32";
    trace(title, "I N I Z I O");
    if (delete_first(hSession, CKO_PUBLIC_KEY, pendingLabel) != CKR_OK) return false;
    if (delete_first(hSession, CKO_PRIVATE_KEY, pendingLabel) != CKR_OK) return false;
    zv::close_card();
    if (open_slot_at(slot_index, login) != Opening::done) return false;
    trace(title, "F I N E");
    return true;
}
