// Removal of what an unfinished request left behind.
#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/guarded.h"

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

int delete_all_pending() {
    static constexpr char title[] = " .... DeleteAllPending (Objects) FUN .... ";
    // The last search stays open.
    const zv::Search search = {
        .session = zv::hSession, .log = zv::TRACED, .exits = {.at_end = zv::Exit::left_open}, .title = title};
    for (std::vector<CK_OBJECT_HANDLE> gone;;) {
        const std::size_t before = gone.size();
        const zv::Walked walked = zv::walk(
            search, [&gone](CK_OBJECT_HANDLE object) { return destroy_if_pending(title, object, gone); });
        if (!walked.whole()) return ZV_FAILED;
        if (gone.size() == before) return 0;
        // A destroyed object may disturb the search that found it: a new one goes on.
        if (zv::end_search(search) != CKR_OK) return ZV_FAILED;
    }
}

} // namespace

int DeleteAllPending(void*) {
    return zv::guarded(ZV_FAILED, delete_all_pending);
}

int DeleteAllPending32(char* library, char* pin, unsigned int slot_index, void*) {
    static constexpr char title[] = "DeleteAllPending32";
    zv::trace(title, "I N I Z I O");
    if (DeleteAnObject(zv::hSession, CKO_PUBLIC_KEY, zv::pendingLabel) != 0) return ZV_FAILED;
    if (DeleteAnObject(zv::hSession, CKO_PRIVATE_KEY, zv::pendingLabel) != 0) return ZV_FAILED;
    finalizza();
    if (inizializza(library, pin, slot_index, nullptr, CKU_USER) != 0) return ZV_FAILED;
    zv::trace(title, "F I N E");
    return 0;
}
