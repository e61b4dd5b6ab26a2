#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace simcard {

// The connection of a card to its virtual reader: messages of two bytes of length, big endian, and a body.
class ReaderLink {
  public:
    // Waits for a reader on that port of this machine, within the limit or until a signal to stop comes.
    // @throws std::system_error
    ReaderLink(std::uint16_t port, std::chrono::milliseconds limit);
    ~ReaderLink();
    ReaderLink(const ReaderLink&) = delete;
    ReaderLink& operator=(const ReaderLink&) = delete;

    // The reader's next message; none when the reader is gone or a signal to stop came.
    // @throws std::system_error
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> receive();
    // @throws std::system_error
    void send(std::span<const std::uint8_t> body);

  private:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes);

    int socket_ = -1;
};

} // namespace simcard
