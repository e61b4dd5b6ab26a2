#include "simcard/virtual/play.h"

namespace simcard {
namespace {

// A message of one byte is for the card's contacts, any other a command.
enum Contact : std::uint8_t { power_off = 0, power_on = 1, reset = 2, give_atr = 4 };

} // namespace

void play(ReaderLink& reader, const Options& options, Applet& applet) {
    bool silent = false;
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
            silent = options.mute;
            break;
        case give_atr:
            // The reader also asks to find out whether a card is there; a mute card is, so that only the
            // question after a reset goes unanswered.
            reader.send(silent ? std::span<const std::uint8_t>() : options.atr);
            silent = false;
            break;
        default:
            break;
        }
    }
}

} // namespace simcard
