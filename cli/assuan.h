#pragma once

#include "cli/child_process.h"
#include "cli/ending_signals.h"
#include "cli/engine.h"
#include "host/pin.h"

#include <chrono>
#include <string>
#include <string_view>

namespace cli {

// Talks to a program in the protocol of GnuPG's helpers: a command a line, answered by data, if any, and OK or ERR.
//
// Data are secret: they go into a Pin byte by byte, and nowhere else.
class Assuan {
  public:
    struct Answer {
        bool ok = false;
        unsigned long code = 0; // of an ERR
        std::string text;       // of an ERR, for a person
    };
    // What cannot go on: the program hangs, has ended or does not speak the protocol. What it is that came is not told.
    enum class Failure { ended, silent, nonsense };

    // Starts the program and takes its greeting. @throws Error when it cannot be started; Failure
    Assuan(const std::string& program, std::chrono::milliseconds patience);

    // @param text  what stands behind the command's name, as it is; it is escaped here
    // @param data  where data go; null when there are none to come
    // @throws Failure; Error when the person ends the program meanwhile
    Answer ask(std::string_view command, std::string_view text, std::chrono::milliseconds patience,
               Pin* data = nullptr);

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] Answer answer(Pin* data);
    [[nodiscard]] std::string line(Pin* data);
    void take_data(Pin& data);
    [[nodiscard]] char unescaped();
    [[nodiscard]] char next();

    EndingSignals signals_;
    ChildProcess program_;
    Clock::time_point until_{}; // the answer has to have come
};

} // namespace cli
