#include "crypt/kept_pin.h"

#include <openssl/crypto.h>
#include <sys/mman.h>

#include <algorithm>

namespace zvcrypt {

// The length is in the page, too: a child process, which gets zeros for it, has no PIN.
struct KeptPin::Page {
    std::size_t length;
    unsigned char text[256];
};

KeptPin::KeptPin() noexcept : page_(nullptr) {
    void* memory = ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    if (::mlock(memory, sizeof(Page)) != 0) {
        (void)::munmap(memory, sizeof(Page));
        return;
    }
#ifdef __linux__
    (void)::madvise(memory, sizeof(Page), MADV_DONTDUMP);
    (void)::madvise(memory, sizeof(Page), MADV_WIPEONFORK);
#endif
    page_ = static_cast<Page*>(memory);
}

KeptPin::~KeptPin() {
    wipe();
    if (page_ != nullptr) (void)::munmap(page_, sizeof(Page));
}

void KeptPin::keep(std::string_view pin) noexcept {
    wipe();
    if (page_ == nullptr || pin.size() > sizeof page_->text) return;
    std::copy(pin.begin(), pin.end(), page_->text);
    page_->length = pin.size();
}

void KeptPin::wipe() noexcept {
    if (page_ != nullptr) OPENSSL_cleanse(page_, sizeof(Page));
}

std::span<unsigned char> KeptPin::bytes() const noexcept {
    if (page_ == nullptr) return {};
    return {page_->text, page_->length};
}

} // namespace zvcrypt
