#include "simcard/virtual/applet_command.h"

namespace simcard {
namespace {

// Takes bytes from the front; a command that ends too early is refused.
class Front {
  public:
    explicit Front(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

    [[nodiscard]] std::size_t left() const { return rest_.size(); }
    std::span<const std::uint8_t> take(std::size_t count) {
        if (count > rest_.size()) throw Refused(Status::wrong_length);
        const auto taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }
    std::size_t number(std::size_t bytes) {
        std::size_t value = 0;
        for (const std::uint8_t byte : take(bytes))
            value = value << 8 | byte;
        return value;
    }

  private:
    std::span<const std::uint8_t> rest_;
};

constexpr std::size_t ALL_SHORT = 0x100, ALL_EXTENDED = 0x10000;

// Where the length of data or answer begins with 00, both have two bytes.
void parse_body(Front& front, Command& command) {
    if (front.left() == 1) {
        command.expected = front.number(1);
        if (command.expected == 0) command.expected = ALL_SHORT;
        return;
    }
    std::size_t width = 1, length = front.number(1);
    if (length == 0) {
        width = 2;
        length = front.number(2);
        if (front.left() == 0) {
            command.expected = length == 0 ? ALL_EXTENDED : length;
            return;
        }
    }
    const auto data = front.take(length);
    command.data.assign(data.begin(), data.end());
    if (front.left() == 0) return;
    command.expected = front.number(width);
    if (command.expected == 0) command.expected = width == 1 ? ALL_SHORT : ALL_EXTENDED;
    if (front.left() != 0) throw Refused(Status::wrong_length);
}

// The length of an object behind its tag.
std::size_t object_length(Front& front) {
    const std::size_t first = front.number(1);
    if (first < 0x80) return first;
    if (first > 0x82 || first == 0x80) throw Refused(Status::wrong_data);
    return front.number(first - 0x80);
}

} // namespace

Command parse_command(std::span<const std::uint8_t> bytes) {
    Front front(bytes);
    Command command;
    command.chained = (front.number(1) & 0x10) != 0;
    command.instruction = static_cast<std::uint8_t>(front.number(1));
    command.p1 = static_cast<std::uint8_t>(front.number(1));
    command.p2 = static_cast<std::uint8_t>(front.number(1));
    if (front.left() != 0) parse_body(front, command);
    return command;
}

std::optional<std::span<const std::uint8_t>> find_object(std::span<const std::uint8_t> objects,
                                                         std::uint16_t tag) {
    Front front(objects);
    while (front.left() != 0) {
        std::size_t found = front.number(1);
        if ((found & 0x1F) == 0x1F) found = found << 8 | front.number(1);
        const auto value = front.take(object_length(front));
        if (found == tag) return value;
    }
    return std::nullopt;
}

Octets object(std::uint16_t tag, std::span<const std::uint8_t> value) {
    Octets all;
    const auto add = [&](std::size_t byte) { all.push_back(static_cast<std::uint8_t>(byte)); };
    if (tag > 0xFF) add(tag >> 8);
    add(tag & 0xFF);
    if (value.size() > 0xFF) {
        add(0x82);
        add(value.size() >> 8);
    } else if (value.size() > 0x7F) {
        add(0x81);
    }
    add(value.size() & 0xFF);
    append(all, value);
    return all;
}

void append(Octets& to, std::span<const std::uint8_t> more) {
    to.insert(to.end(), more.begin(), more.end());
}

} // namespace simcard
