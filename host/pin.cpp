#include "host/pin.h"

#include "host/error.h"

#include <openssl/crypto.h>
#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace zvhost {
namespace {

constexpr std::size_t PAGE_SIZE = 4096; // at least: the system gives whole pages

} // namespace

Pin::Pin() {
    void* memory = ::mmap(nullptr, PAGE_SIZE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    // Where a user may lock nothing, the PIN is worth having all the same.
    (void)::mlock(memory, PAGE_SIZE);
#ifdef MADV_DONTDUMP
    (void)::madvise(memory, PAGE_SIZE, MADV_DONTDUMP);
#endif
    page_.reset(new (memory) Page);
}

void Pin::Release::operator()(Page* page) const {
    OPENSSL_cleanse(page, sizeof *page);
    ::munmap(page, PAGE_SIZE);
}

char* Pin::text() {
    if (page_->refused) throw Error(Exit::failed, Sentence("pin-refused-before", {}));
    return page_->text.data();
}

void Pin::add(char c) {
    if (full())
        ++page_->dropped;
    else
        page_->text[page_->length++] = c;
}

void Pin::remove_last() {
    if (page_->dropped > 0)
        --page_->dropped;
    else if (page_->length > 0)
        page_->text[--page_->length] = '\0';
}

Pin Pin::copy() const {
    Pin other;
    *other.page_ = *page_;
    return other;
}

void Pin::wipe() {
    OPENSSL_cleanse(page_->text.data(), page_->text.size());
    page_->length = page_->dropped = 0;
}

void check_pin_form(const Pin& pin) {
    const auto refuse = [](const Sentence& sentence) { throw Error(Exit::refused, sentence); };
    const std::string_view text = pin.view();
    if (text.empty()) refuse({"pin-empty", {}});
    if (pin.overlong()) refuse({"pin-long", {{"most", long{ZV_PIN_MAX}}}});
    if (text.back() == ' ') refuse({"pin-blank", {}});
    const auto is_control = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    if (std::any_of(text.begin(), text.end(), is_control)) refuse({"pin-control", {}});
}

} // namespace zvhost
