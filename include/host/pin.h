#pragma once

#include "zvRenew.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace zvhost {

// A user PIN. Lives in this object alone, in memory that goes to no swap and no dump, and is wiped with it.
class Pin {
  public:
    Pin();
    Pin(Pin&&) noexcept = default;
    Pin& operator=(Pin&&) = default;
    [[nodiscard]] Pin copy() const;

    void add(char c);
    void remove_last();
    void wipe();

    // What is sent to a card. The library takes PINs as writable texts, but never writes into them.
    // @throws Error when a card has refused it: it is not sent again
    [[nodiscard]] char* text();
    // A card has refused it.
    void refuse() { page_->refused = true; }
    [[nodiscard]] bool refused() const { return page_->refused; }
    [[nodiscard]] std::string_view view() const { return {page_->text.data(), page_->length}; }
    [[nodiscard]] bool full() const { return page_->length + 1 == page_->text.size(); }
    [[nodiscard]] bool overlong() const { return page_->dropped > 0 || page_->length > ZV_PIN_MAX; }

  private:
    struct Page {
        std::array<char, 64> text{};
        std::size_t length = 0;
        std::size_t dropped = 0; // characters that found no room
        bool refused = false;
    };
    struct Release {
        void operator()(Page* page) const;
    };
    std::unique_ptr<Page, Release> page_;
};

// Refuses a PIN that would cost a try for nothing, or would not reach the card as it is.
// @throws Error
void check_pin_form(const Pin& pin);

} // namespace zvhost
