#include "ossl/pem_blocks.h"

#include "ossl/memory_bio.h"

#include <openssl/err.h>
#include <openssl/pem.h>

namespace ossl {

std::vector<PemBlock> pem_blocks(std::string_view text) {
    std::vector<PemBlock> blocks;
    const Bio source = reading(text);
    char* name = nullptr;
    char* header = nullptr;
    unsigned char* data = nullptr;
    long length = 0;
    while (PEM_read_bio(source.get(), &name, &header, &data, &length) == 1) {
        blocks.push_back({name, {reinterpret_cast<char*>(data), static_cast<std::size_t>(length)}});
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(data);
    }
    ERR_clear_error();
    return blocks;
}

std::string pem_text(const PemBlock& block) {
    const Bio target = writing();
    PEM_write_bio(target.get(), block.name.c_str(), "",
                  reinterpret_cast<const unsigned char*>(block.der.data()),
                  static_cast<long>(block.der.size()));
    return std::string(written(*target));
}

} // namespace ossl
