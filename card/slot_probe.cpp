#include "card/slot_probe.h"

#include "card/session.h"
#include "diag/log.h"
#include "util/text.h"

#include <dlfcn.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <new>

namespace zv {

namespace {

constexpr std::size_t DESCRIPTION_SIZE = sizeof(CK_SLOT_INFO::slotDescription);

struct Unload {
    void operator()(void* module) const { ::dlclose(module); }
};

using Module = std::unique_ptr<void, Unload>;

bool start(const CK_FUNCTION_LIST& list) {
    CK_RV result = invoke(list.C_Initialize, nullptr);
    if (result == CKR_CRYPTOKI_ALREADY_INITIALIZED) {
        invoke(list.C_Finalize, nullptr);
        result = invoke(list.C_Initialize, nullptr);
    }
    return result == CKR_OK;
}

bool belongs_to(const char* reader, const CK_SLOT_INFO& info) {
    char description[DESCRIPTION_SIZE + 1] = {};
    std::memcpy(description, info.slotDescription, DESCRIPTION_SIZE);
    for (std::size_t end = DESCRIPTION_SIZE; end > 0; --end) {
        if (std::isspace(static_cast<unsigned char>(description[end - 1])) == 0) break;
        description[end - 1] = '\0';
    }
    // A description that fills its field runs into the next one; it is cut one short of the field.
    const bool runs_on = std::strlen(description) == DESCRIPTION_SIZE && info.manufacturerID[0] != '\0';
    if (runs_on) description[DESCRIPTION_SIZE - 1] = '\0';
    return description[0] != '\0' && std::strstr(reader, description) != nullptr;
}

std::optional<unsigned> matching_slot(const CK_FUNCTION_LIST& list, const char* reader) {
    CK_ULONG all = 0;
    invoke(list.C_GetSlotList, CK_BBOOL{CK_FALSE}, nullptr, &all);
    all = std::min(all, MOST_SLOTS);
    const std::unique_ptr<CK_SLOT_ID[]> slots(new (std::nothrow) CK_SLOT_ID[all + 1]());
    if (slots == nullptr) return std::nullopt;
    CK_ULONG count = all;
    invoke(list.C_GetSlotList, CK_BBOOL{CK_TRUE}, slots.get(), &count);
    count = std::min(count, all);
    const auto matches = [&list, reader](CK_SLOT_ID slot_id) {
        CK_SLOT_INFO info{};
        invoke(list.C_GetSlotInfo, slot_id, &info);
        return (info.flags & CKF_TOKEN_PRESENT) != 0 && belongs_to(reader, info);
    };
    const CK_SLOT_ID* end = slots.get() + count;
    const CK_SLOT_ID* found = std::find_if(slots.get(), slots.get() + count, matches);
    if (found == end) return std::nullopt;
    return static_cast<unsigned>(*found);
}

} // namespace

std::optional<unsigned> slot_of_reader(const char* reader, const char* module_path) {
    const Module module(open_module(module_path));
    if (module == nullptr) {
        write_line("getSlot dlopen fallita");
        return std::nullopt;
    }
    const CK_FUNCTION_LIST* list = function_list_of(module.get());
    if (list == nullptr) return std::nullopt;
    const std::optional<unsigned> slot_id = start(*list) ? matching_slot(*list, reader) : std::nullopt;
    invoke(list->C_Finalize, nullptr);
    return slot_id;
}

} // namespace zv
