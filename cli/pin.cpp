#include "cli/pin.h"

#include "cli/outcome.h"

#include <algorithm>
#include <openssl/crypto.h>

namespace cli {

Pin::Pin(Pin&& other) noexcept : text_(other.text_), length_(other.length_), dropped_(other.dropped_) {
    other.wipe();
}

void Pin::add(char c) {
    if (full())
        ++dropped_;
    else
        text_[length_++] = c;
}

void Pin::remove_last() {
    if (dropped_ > 0)
        --dropped_;
    else if (length_ > 0)
        text_[--length_] = '\0';
}

void Pin::wipe() {
    OPENSSL_cleanse(text_.data(), text_.size());
    length_ = dropped_ = 0;
}

void check_pin_form(const Pin& pin) {
    const auto refuse = [](const char* sentence) { throw Stop(Exit::refused, sentence); };
    const std::string_view text = pin.view();
    if (text.empty()) refuse("The PIN is empty: the card would count that as a wrong one.");
    if (pin.overlong()) refuse("The PIN has more than 31 characters.");
    if (text.back() == ' ') refuse("The PIN ends with a blank, which would not reach the card.");
    const auto is_control = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    if (std::any_of(text.begin(), text.end(), is_control))
        refuse("The PIN has a control character in it (a tab, a line end).");
}

} // namespace cli
