#include "simcard/tool/attributes.h"

#include <openssl/crypto.h>

namespace simcard {

Attributes::~Attributes() {
    for (std::string& value : values_)
        OPENSSL_cleanse(value.data(), value.size());
}

Attributes& Attributes::add(CK_ATTRIBUTE_TYPE type, std::string_view bytes) {
    std::string& value = values_.emplace_back(bytes);
    entries_.push_back({type, value.data(), value.size()});
    return *this;
}

Attributes& Attributes::add_number(CK_ATTRIBUTE_TYPE type, CK_ULONG number) {
    return add(type, {reinterpret_cast<const char*>(&number), sizeof number});
}

Attributes& Attributes::add_flag(CK_ATTRIBUTE_TYPE type, bool flag) {
    const CK_BBOOL value = flag ? CK_TRUE : CK_FALSE;
    return add(type, {reinterpret_cast<const char*>(&value), sizeof value});
}

} // namespace simcard
