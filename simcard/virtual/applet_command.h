#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

namespace simcard {

using Octets = std::vector<std::uint8_t>;

// The two status bytes that end an answer (ISO/IEC 7816-4, 5.6).
enum class Status : std::uint16_t {
    done = 0x9000,
    wrong_length = 0x6700,
    no_chaining = 0x6884,
    not_allowed = 0x6982, // the PIN was not given
    blocked = 0x6983,
    no_conditions = 0x6985,
    wrong_data = 0x6A80,
    unknown_function = 0x6A81,
    no_file = 0x6A82,
    no_space = 0x6A84,
    wrong_parameters = 0x6A86,
    no_reference = 0x6A88,
    file_exists = 0x6A89,
    wrong_offset = 0x6B00,
    unknown_instruction = 0x6D00,
    no_diagnosis = 0x6F00,
};

// Ends a command with that status.
class Refused : public std::runtime_error {
  public:
    explicit Refused(Status status) : Refused(static_cast<std::uint16_t>(status)) {}
    explicit Refused(std::uint16_t status) : std::runtime_error("refused"), status_(status) {}
    [[nodiscard]] std::uint16_t status() const { return status_; }

  private:
    std::uint16_t status_;
};

// A command in its parts, short or extended.
struct Command {
    bool chained = false; // more of it follows
    std::uint8_t instruction = 0, p1 = 0, p2 = 0;
    Octets data;
    std::size_t expected = 0; // how much answer is wanted at most; 0 for none

    [[nodiscard]] std::uint16_t parameters() const { return static_cast<std::uint16_t>(p1 << 8 | p2); }
};

// @throws Refused when lengths and content do not fit.
[[nodiscard]] Command parse_command(std::span<const std::uint8_t> bytes);

// The value of the first object of a tag of one or two bytes among these, if there is one (BER-TLV).
[[nodiscard]] std::optional<std::span<const std::uint8_t>> find_object(std::span<const std::uint8_t> objects,
                                                                       std::uint16_t tag);

// An object of that tag.
[[nodiscard]] Octets object(std::uint16_t tag, std::span<const std::uint8_t> value);

void append(Octets& to, std::span<const std::uint8_t> more);

} // namespace simcard
