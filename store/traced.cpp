#include "store/traced.h"

#include "card/session.h"
#include "diag/report.h"
#include "store/objects.h"
#include "util/numbers.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zv {

namespace {

constexpr unsigned long NONE = ~0UL;
// Most entries of a template whose lengths are checked after a read.
constexpr std::size_t MOST_ENTRIES = 16;

bool is_longer(const CK_ATTRIBUTE& read, const CK_ULONG& room) {
    return read.pValue != nullptr && read.ulValueLen > room;
}

CK_RV read_bounded(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, std::span<CK_ATTRIBUTE> tmpl) {
    std::array<CK_ULONG, MOST_ENTRIES> room{};
    const auto checked = tmpl.first(tmpl.data() != nullptr ? std::min(tmpl.size(), room.size()) : 0);
    std::ranges::transform(checked, room.begin(), &CK_ATTRIBUTE::ulValueLen);
    const CK_RV result =
        call<&Functions::C_GetAttributeValue>(session, object, tmpl.data(), CK_ULONG{tmpl.size()});
    if (result != CKR_OK) return result;
    for (std::size_t i = 0; i < checked.size(); ++i)
        if (is_longer(checked[i], room[i])) return CKR_BUFFER_TOO_SMALL;
    return CKR_OK;
}

} // namespace

void trace_call(const SearchCall& call) {
    // The start alone shows the session as an int.
    if (call.step == SearchStep::start)
        trace(call.title, call.name, with_hex("hSession = ", static_cast<int>(call.session)));
    else
        trace_session(call.title, call.name, call.session);
}

void report_call(const SearchCall& call) {
    if (call.result == CKR_OK) return;
    // A failed start has no entry with the step and the code, unlike the calls behind it.
    if (call.step != SearchStep::start) report_code(call.title, call.name, call.result);
    report_sentence(SEARCH_ERROR, call.result);
}

CK_RV read_traced(const char* title, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
                  std::span<CK_ATTRIBUTE> tmpl) {
    static constexpr char step[] = "C_GetAttributeValue";
    trace_session(title, step, session);
    rv = read_bounded(session, object, tmpl);
    if (rv != CKR_OK) report_failure(title, step, rv, READ_ERROR);
    return rv;
}

CK_RV find_traced(const char* title, CK_SESSION_HANDLE session, std::span<CK_OBJECT_HANDLE> room,
                  CK_ULONG* found) {
    SearchCall made = {SearchStep::next, "C_FindObjects", title, session, 1};
    trace_call(made);
    rv = call<&Functions::C_FindObjects>(session, room.data(), CK_ULONG{room.size()}, found);
    if (rv == CKR_OK) rv = check_found(*found, room.size());
    made.result = rv;
    report_call(made);
    return rv;
}

Found find_one(CK_SESSION_HANDLE session, std::span<CK_ATTRIBUTE> tmpl) {
    static constexpr char title[] = " .... FindAnObject FUN               .... ";
    static constexpr auto trace_long = [](const SearchCall& call) {
        trace_session(call.title, call.name, call.session);
    };
    const Search search = {.session = session,
                           .tmpl = tmpl,
                           .most = FIRST_OBJECT,
                           .log = {trace_long, report_call},
                           .exits = ALWAYS_ENDED,
                           .title = title};
    Found found = {.code = NONE, .none = true};
    const Walked walked = walk(search, [&](CK_OBJECT_HANDLE first) {
        CK_OBJECT_CLASS object_class = 0;
        CK_ATTRIBUTE entry = attribute_of(CKA_CLASS, object_class);
        found = {read_traced(title, session, first, {&entry, 1}), first, false};
    });
    if (walked.whole()) return found;
    // A search that cannot be closed found nothing.
    const bool not_ended = walked.how == Walked::End::not_ended;
    return {not_ended ? NONE : walked.code, found.object, false};
}

} // namespace zv
