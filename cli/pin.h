#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace cli {

/// A user PIN. Lives in this object alone and is wiped with it.
class Pin {
  public:
    static constexpr std::size_t longest = 31;

    Pin() = default;
    Pin(Pin&& other) noexcept;
    Pin& operator=(Pin&&) = delete;
    ~Pin() { wipe(); }

    void add(char c);
    void remove_last();
    void wipe();

    /// The library takes PINs as writable texts, but never writes into them.
    [[nodiscard]] char* text() { return text_.data(); }
    [[nodiscard]] std::string_view view() const { return {text_.data(), length_}; }
    [[nodiscard]] bool full() const { return length_ + 1 == text_.size(); }
    [[nodiscard]] bool overlong() const { return dropped_ > 0 || length_ > longest; }

  private:
    std::array<char, 64> text_{};
    std::size_t length_ = 0;
    std::size_t dropped_ = 0; // characters that found no room
};

/// Refuses a PIN that would cost a try for nothing, or would not reach the card as it is.
/// @throws Stop
void check_pin_form(const Pin& pin);

} // namespace cli
