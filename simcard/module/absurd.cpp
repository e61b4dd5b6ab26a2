#include "simcard/module/absurd.h"

#include <algorithm>
#include <cstring>

namespace simcard {
namespace {

constexpr CK_ULONG HUGE_COUNT = 0x7FFFFFFF;
constexpr CK_ULONG PAST_THE_END = 4096;

template <std::size_t Size> void fill(CK_UTF8CHAR (&field)[Size]) {
    std::fill(std::begin(field), std::end(field), static_cast<CK_UTF8CHAR>('X'));
}

// Fills the texts of a record that describes the module, a slot or a token.
void fill_texts(std::string_view type, const Call& call, std::size_t index) {
    if (type == "CK_INFO_PTR") {
        fill(call.pointer<CK_INFO>(index)->manufacturerID);
        fill(call.pointer<CK_INFO>(index)->libraryDescription);
    } else if (type == "CK_SLOT_INFO_PTR") {
        fill(call.pointer<CK_SLOT_INFO>(index)->slotDescription);
        fill(call.pointer<CK_SLOT_INFO>(index)->manufacturerID);
    } else if (type == "CK_TOKEN_INFO_PTR") {
        auto& token = *call.pointer<CK_TOKEN_INFO>(index);
        fill(token.label);
        fill(token.manufacturerID);
        fill(token.model);
        fill(token.serialNumber);
    }
}

void falsify_size(Absurdity kind, CK_ULONG& size, CK_ULONG room, bool is_count) {
    if (kind == Absurdity::count && is_count) size = HUGE_COUNT;
    if (kind == Absurdity::length && !is_count) size = std::max(size, room) + PAST_THE_END;
    if (kind == Absurdity::unavailable) size = CK_UNAVAILABLE_INFORMATION;
    if (kind == Absurdity::brief && !is_count && size != 0) --size;
}

void falsify_attribute(Absurdity kind, CK_ATTRIBUTE& entry, CK_ULONG room) {
    if (kind == Absurdity::length) entry.ulValueLen = std::max(entry.ulValueLen, room) + PAST_THE_END;
    if (kind == Absurdity::unavailable) entry.ulValueLen = CK_UNAVAILABLE_INFORMATION;
    if (kind != Absurdity::text || !entry.pValue) return;
    std::memset(entry.pValue, 'X', room);
    entry.ulValueLen = room;
}

} // namespace

void falsify(Absurdity kind, const Call& call, const Rooms& rooms) {
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (call.arguments[i] == 0) continue;
        if (kind == Absurdity::text) fill_texts(parameters[i].type, call, i);
        if (parameters[i].role == Role::size)
            falsify_size(kind, *call.pointer<CK_ULONG>(i), rooms.size(i),
                         parameters[i].name.ends_with("Count"));
        if (parameters[i].role != Role::attributes || call.function != Function::C_GetAttributeValue)
            continue;
        for (CK_ULONG entry = 0; entry < call.arguments[i + 1]; ++entry)
            falsify_attribute(kind, call.pointer<CK_ATTRIBUTE>(i)[entry], rooms.lengths(i)[entry]);
        if (kind == Absurdity::brief) call.pointer<CK_ATTRIBUTE>(i)[call.arguments[i + 1] - 1].ulValueLen = 0;
    }
}

} // namespace simcard
