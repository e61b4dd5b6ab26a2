#pragma once

#include <span>
#include <string_view>

namespace zvcrypt {

// The PIN that a session was logged in with, in a page of its own that is not swapped, dumped or given to a child
// process, and that is wiped.
class KeptPin {
  public:
    KeptPin() noexcept;
    ~KeptPin();
    KeptPin(const KeptPin&) = delete;
    KeptPin& operator=(const KeptPin&) = delete;

    // Takes the place of the one before. Without memory that can be locked, none is kept.
    void keep(std::string_view pin) noexcept;
    void wipe() noexcept;
    // Empty when none is kept.
    [[nodiscard]] std::span<unsigned char> bytes() const noexcept;

  private:
    struct Page;
    Page* page_;
};

} // namespace zvcrypt
