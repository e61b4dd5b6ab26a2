#include "simcard/module/rooms.h"

namespace simcard {

Rooms::Rooms(const Call& call) {
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (call.arguments[i] == 0) continue;
        if (parameters[i].role == Role::size) sizes_[i] = *call.pointer<CK_ULONG>(i);
        if (parameters[i].role != Role::attributes) continue;
        const auto* attributes = call.pointer<CK_ATTRIBUTE>(i);
        for (CK_ULONG entry = 0; entry < call.arguments[i + 1]; ++entry)
            lengths_[i].push_back(attributes[entry].ulValueLen);
    }
}

} // namespace simcard
