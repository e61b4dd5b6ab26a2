#pragma once

#include "simcard/virtual/child.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace simcard {

/// A PC/SC service with two virtual readers that only this process and those it starts can see.
class VirtualReaders {
  public:
    /// The port that a card for the first reader goes to; the second reader's is one more.
    static constexpr std::uint16_t first_port = 0x9001;

    /// Why there can be none on this machine; empty when there can, and then this process has entered a
    /// machine of its own.
    [[nodiscard]] static std::string missing();

    VirtualReaders();
    ~VirtualReaders();
    VirtualReaders(const VirtualReaders&) = delete;
    VirtualReaders& operator=(const VirtualReaders&) = delete;

    /// Starts the service. The readers are called `name` with " 00 00" and " 00 01" behind it; the service
    /// cuts a name of more than 121 bytes. Without a name there are none.
    /// @throws std::runtime_error
    void start(const std::string& name);
    /// Ends the service at once, as if it had crashed.
    void stop();

    /// Waits until the service shows a card in a reader, or none.
    /// @throws std::runtime_error after five seconds
    static void await_card(const std::string& reader, bool present);

  private:
    std::filesystem::path folder_;
    std::optional<Child> service_;
};

} // namespace simcard
