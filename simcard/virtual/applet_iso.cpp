#include "simcard/virtual/applet_iso.h"

#include "simcard/authority/errors.h"

#include <algorithm>
#include <utility>

namespace simcard {
namespace {

enum Instruction : std::uint8_t {
    verify_pin = 0x20,
    manage_security_environment = 0x22,
    change_reference_data = 0x24,
    perform_security_operation = 0x2A,
    reset_retry_counter = 0x2C,
    generate_key_pair = 0x46,
    select_file = 0xA4,
    read_binary = 0xB0,
    get_response = 0xC0,
    update_binary = 0xD6,
    create_file = 0xE0,
    delete_file = 0xE4,
};

constexpr std::array<std::uint8_t, 12> OWN_NAME = {0xF2, 0x76, 0xA2, 0x88, 0xBC, 0xFB,
                                                   0xA6, 0x9D, 0x34, 0xF3, 0x10, 0x01};
// Version 0.6 of the command set, with nothing of what it leaves to choose.
constexpr std::array<std::uint8_t, 3> OWN_VERSION = {0x00, 0x06, 0x00};
constexpr std::size_t LONGEST_CHAIN = 4096;

Octets status_bytes(std::uint16_t status) {
    return {static_cast<std::uint8_t>(status >> 8), static_cast<std::uint8_t>(status & 0xFF)};
}

} // namespace

void IsoApplet::reset() {
    pin_.forget();
    puk_.forget();
    files_.reset();
    keys_.reset();
    chained_.clear();
    waiting_.clear();
}

std::vector<std::uint8_t> IsoApplet::answer(std::span<const std::uint8_t> bytes) try {
    Command command = parse_command(bytes);
    if (chained_.size() + command.data.size() > LONGEST_CHAIN) {
        chained_.clear();
        throw Refused(Status::wrong_length);
    }
    append(chained_, command.data);
    if (command.chained) return status_bytes(static_cast<std::uint16_t>(Status::done));
    command.data = std::exchange(chained_, {});
    if (command.instruction != get_response) waiting_ = run(command);
    return next_part(command.expected);
} catch (const Refused& refused) {
    return status_bytes(refused.status());
} catch (const Failure&) {
    return status_bytes(static_cast<std::uint16_t>(Status::no_diagnosis));
}

Octets IsoApplet::next_part(std::size_t expected) {
    const std::size_t count = std::min(waiting_.size(), expected);
    Octets part(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(count));
    waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(count));
    const std::size_t left = std::min<std::size_t>(waiting_.size(), 0x100);
    append(part, waiting_.empty() ? status_bytes(static_cast<std::uint16_t>(Status::done))
                                  : status_bytes(static_cast<std::uint16_t>(0x6100 | (left & 0xFF))));
    return part;
}

Octets IsoApplet::run(const Command& command) {
    switch (command.instruction) {
    case select_file:
        return select(command);
    case create_file:
        files_.create(command, pin_.is_given());
        return {};
    case delete_file:
        files_.remove(command, pin_.is_given());
        return {};
    case read_binary:
        return files_.read(command, pin_.is_given());
    case update_binary:
        files_.update(command, pin_.is_given());
        return {};
    case verify_pin:
        verify(command);
        return {};
    case change_reference_data:
        change(command);
        return {};
    case reset_retry_counter:
        unblock(command);
        return {};
    case manage_security_environment:
        keys_.choose(command);
        return {};
    case generate_key_pair:
        require_pin();
        return keys_.generate();
    case perform_security_operation:
        require_pin();
        return keys_.perform(command);
    default:
        throw Refused(Status::unknown_instruction);
    }
}

Octets IsoApplet::select(const Command& command) {
    constexpr std::uint8_t by_name = 0x04;
    if (command.p1 != by_name || !std::ranges::equal(command.data, OWN_NAME)) return files_.select(command);
    files_.reset();
    return {OWN_VERSION.begin(), OWN_VERSION.end()};
}

CardPin& IsoApplet::pin_named(std::uint8_t reference) {
    if (reference != 1 && reference != 2) throw Refused(Status::no_reference);
    return reference == 1 ? pin_ : puk_;
}

void IsoApplet::require_pin() const {
    if (!pin_.is_given()) throw Refused(Status::not_allowed);
}

void IsoApplet::verify(const Command& command) {
    CardPin& pin = pin_named(command.p2);
    if (command.data.empty())
        pin.ask();
    else
        pin.verify(command.data);
}

// The first PIN and the first PUK are set without an old one.
void IsoApplet::change(const Command& command) {
    CardPin& pin = pin_named(command.p2);
    constexpr std::uint8_t new_one_alone = 0x01;
    if (command.p1 == new_one_alone) {
        if (pin.is_set()) throw Refused(Status::not_allowed);
        pin.set(command.data);
        return;
    }
    if (command.data.size() != 2 * CardPin::LONGEST) throw Refused(Status::wrong_length);
    const std::span<const std::uint8_t> both = command.data;
    pin.verify(both.first(CardPin::LONGEST));
    pin.set(both.last(CardPin::LONGEST));
}

void IsoApplet::unblock(const Command& command) {
    if (command.parameters() != 0x0001 || command.data.size() != 2 * CardPin::LONGEST)
        throw Refused(Status::wrong_parameters);
    const std::span<const std::uint8_t> both = command.data;
    puk_.verify(both.first(CardPin::LONGEST));
    puk_.forget();
    pin_.set(both.last(CardPin::LONGEST));
}

} // namespace simcard
