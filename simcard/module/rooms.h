#pragma once

#include "simcard/module/call.h"

#include <array>
#include <vector>

namespace simcard {

// The sizes of a caller's buffers, kept from before a call: afterwards its lengths may say anything.
class Rooms {
  public:
    explicit Rooms(const Call& call);

    // What a Role::size parameter pointed at.
    [[nodiscard]] CK_ULONG size(std::size_t parameter) const { return sizes_[parameter]; }
    // The lengths in the template of a Role::attributes parameter.
    [[nodiscard]] const std::vector<CK_ULONG>& lengths(std::size_t parameter) const {
        return lengths_[parameter];
    }

  private:
    std::array<CK_ULONG, pkcs11::MOST_PARAMETERS> sizes_{};
    std::array<std::vector<CK_ULONG>, pkcs11::MOST_PARAMETERS> lengths_;
};

} // namespace simcard
