#include "simcard/virtual/reader_link.h"

#include "simcard/virtual/stop_signal.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace simcard {
namespace {

constexpr std::chrono::milliseconds BETWEEN_TRIES{50};
constexpr std::chrono::milliseconds FOREVER{-1};
constexpr std::size_t LONGEST_BODY = 0xFFFF;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// A connected socket, or a negative number with the reason in errno.
int connect_to(std::uint16_t port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    if (socket < 0) return socket;
    sockaddr_in reader{};
    reader.sin_family = AF_INET;
    reader.sin_port = htons(port);
    reader.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&reader), sizeof reader) == 0) return socket;
    const int reason = errno;
    ::close(socket);
    errno = reason;
    return -1;
}

// The reader sends a message in two pieces and waits for the first one's acknowledgement, which a system may
// hold back for some 40 ms. The setting does not last; without it messages are as slow as that.
void acknowledge_at_once([[maybe_unused]] int socket) {
#ifdef TCP_QUICKACK
    const int on = 1;
    (void)::setsockopt(socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
#endif
}

} // namespace

ReaderLink::ReaderLink(std::uint16_t port, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while ((socket_ = connect_to(port)) < 0) {
        if (errno != ECONNREFUSED || std::chrono::steady_clock::now() > end)
            fail("no virtual reader on this port");
        if (wait_readable(-1, BETWEEN_TRIES) == Wait::stopped) return;
    }
    const int on = 1;
    (void)::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

ReaderLink::~ReaderLink() {
    if (socket_ >= 0) ::close(socket_);
}

bool ReaderLink::fill(std::span<std::uint8_t> bytes) {
    while (!bytes.empty()) {
        acknowledge_at_once(socket_);
        if (wait_readable(socket_, FOREVER) == Wait::stopped) return false;
        const auto count = ::recv(socket_, bytes.data(), bytes.size(), 0);
        if (count == 0 || (count < 0 && errno == ECONNRESET)) return false;
        if (count < 0) fail("the reader cannot be heard");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

std::optional<std::vector<std::uint8_t>> ReaderLink::receive() {
    std::array<std::uint8_t, 2> length{};
    if (socket_ < 0 || !fill(length)) return std::nullopt;
    std::vector<std::uint8_t> body(std::size_t{length[0]} << 8 | length[1]);
    if (!fill(body)) return std::nullopt;
    return body;
}

void ReaderLink::send(std::span<const std::uint8_t> body) {
    body = body.first(std::min(body.size(), LONGEST_BODY));
    std::vector<std::uint8_t> message = {static_cast<std::uint8_t>(body.size() >> 8),
                                         static_cast<std::uint8_t>(body.size() & 0xFF)};
    message.insert(message.end(), body.begin(), body.end());
    for (std::span<const std::uint8_t> rest = message; !rest.empty();) {
        const auto count = ::send(socket_, rest.data(), rest.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EPIPE || errno == ECONNRESET)) return; // the next receive() tells
        if (count < 0) fail("the reader cannot be answered");
        rest = rest.subspan(static_cast<std::size_t>(count));
    }
}

} // namespace simcard
