#include "simcard/virtual/play.h"

#include <array>

namespace simcard {
namespace {

// A message of one byte is for the card's contacts, any other a command.
enum Contact : std::uint8_t { power_off = 0, power_on = 1, reset = 2, give_atr = 4 };

// The reader asks for the ATR also to find out whether a card is there, and gives up a card that sends none.
// To one past the longest it answers that the card does not, and the card stays.
constexpr std::array<std::uint8_t, LONGEST_ATR + 1> NO_ATR{};

} // namespace

void play(ReaderLink& reader, const Options& options, Applet& applet) {
    while (const auto message = reader.receive()) {
        if (message->size() != 1) {
            reader.send(applet.answer(*message));
            continue;
        }
        switch (message->front()) {
        case power_off:
            applet.power_off();
            break;
        case power_on:
        case reset:
            applet.reset();
            break;
        case give_atr:
            reader.send(options.mute ? std::span<const std::uint8_t>(NO_ATR) : options.atr);
            break;
        default:
            break;
        }
    }
}

} // namespace simcard
