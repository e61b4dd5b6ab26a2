#include "ossl/memory_bio.h"

namespace ossl {

Bio reading(std::string_view text) {
    return made(Bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size()))));
}

Bio writing() {
    return made(Bio(BIO_new(BIO_s_secmem())));
}

std::string_view written(BIO& target) {
    char* text = nullptr;
    const long length = BIO_get_mem_data(&target, &text);
    return {text, static_cast<std::size_t>(length)};
}

} // namespace ossl
