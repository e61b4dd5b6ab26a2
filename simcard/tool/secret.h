#pragma once

#include <openssl/crypto.h>

#include <string>
#include <utility>

namespace simcard {

// A PIN: a text whose memory is wiped when it goes.
class Secret {
  public:
    Secret() = default;
    Secret(std::string text) : text_(std::move(text)) {}
    Secret(const char* text) : text_(text) {}
    Secret(const Secret&) = default;
    Secret& operator=(const Secret& other) {
        if (this == &other) return *this;
        wipe();
        text_ = other.text_;
        return *this;
    }
    ~Secret() { wipe(); }

    [[nodiscard]] const std::string& text() const { return text_; }
    // For the command line to fill.
    [[nodiscard]] std::string& text() { return text_; }

  private:
    void wipe() {
        text_.resize(text_.capacity());
        OPENSSL_cleanse(text_.data(), text_.size());
        text_.clear();
    }

    std::string text_;
};

} // namespace simcard
