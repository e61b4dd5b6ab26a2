#pragma once

#include "pkcs11.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace simcard {

// A PKCS#11 template that owns its values and wipes them at the end: some are private keys.
class Attributes {
  public:
    Attributes() = default;
    ~Attributes();
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    Attributes(Attributes&&) = default;
    Attributes& operator=(Attributes&&) = delete;

    Attributes& add(CK_ATTRIBUTE_TYPE type, std::string_view bytes);
    Attributes& add_number(CK_ATTRIBUTE_TYPE type, CK_ULONG number);
    Attributes& add_flag(CK_ATTRIBUTE_TYPE type, bool flag);

    [[nodiscard]] CK_ATTRIBUTE* data() { return entries_.data(); }
    [[nodiscard]] CK_ULONG size() const { return entries_.size(); }

  private:
    std::deque<std::string> values_; // a deque does not move what it holds
    std::vector<CK_ATTRIBUTE> entries_;
};

} // namespace simcard
