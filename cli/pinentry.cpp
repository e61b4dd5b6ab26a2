#include "cli/pinentry.h"

#include "cli/assuan.h"
#include "cli/pin_question.h"
#include "host/error.h"
#include "host/printable.h"
#include "words/words.h"

#include <unistd.h>

#include <cstdlib>

namespace cli {
namespace {

constexpr int MOST_FORMS = 3; // how often a PIN is asked for whose form is refused

// GnuPG's codes; the bits above them say which program it was.
constexpr unsigned long CODE_MASK = 0xFFFF;
constexpr unsigned long TIMED_OUT = 62;
constexpr unsigned long CANCELED = 99;
constexpr unsigned long FULLY_CANCELED = 198;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string character_set() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (std::string value = environment(name); !value.empty()) return value;
    return {};
}

std::string description(const CardFacts& card) {
    const CardState state = card.state.value_or(CardState{});
    const Sentence which("pin-of-card",
                         {{"serial", state.serial}, {"label", state.label}, {"reader", card.reader}});
    std::string text = words::of(which);
    for (const Sentence& sentence : about_pin(card))
        text += "\n" + words::of(sentence);
    return printable(text);
}

// A conversation with the program.
class Pinentry {
  public:
    Pinentry(const std::string& program, const Patience& patience)
        : assuan_(program, patience.program), patience_(patience) {}

    // Some know no such option; they do without.
    void option(const std::string& name, const std::string& value) {
        if (!value.empty()) (void)assuan_.ask("OPTION", name + "=" + value, patience_.program);
    }
    void prepare() {
        if (::access("/dev/tty", R_OK | W_OK) == 0) option("ttyname", "/dev/tty");
        option("ttytype", environment("TERM"));
        option("lc-ctype", character_set());
        const auto longest = std::chrono::duration_cast<std::chrono::seconds>(patience_.person).count();
        (void)assuan_.ask("SETTIMEOUT", std::to_string(longest), patience_.program);
        (void)assuan_.ask("SETTITLE", "zvrenew", patience_.program);
    }
    // A question that is not shown gets no answer.
    void show(const char* command, const std::string& text) {
        if (!assuan_.ask(command, text, patience_.program).ok)
            throw Assuan::Failure{Assuan::Failure::nonsense};
    }
    [[nodiscard]] Pin pin() {
        Pin pin;
        const Assuan::Answer answer = assuan_.ask("GETPIN", "", patience_.person + patience_.program, &pin);
        if (!answer.ok) refuse(answer);
        return pin;
    }

  private:
    [[noreturn]] static void refuse(const Assuan::Answer& answer) {
        const unsigned long code = answer.code & CODE_MASK;
        if (code == CANCELED || code == FULLY_CANCELED)
            throw Error(Exit::refused, Sentence("pin-stopped", {}));
        if (code == TIMED_OUT) throw Error(Exit::refused, Sentence("pin-nobody", {}));
        throw Error(Exit::refused, Sentence("pin-lost", {{"reason", answer.text}}));
    }

    Assuan assuan_;
    Patience patience_;
};

Pin pin_of_right_form(Pinentry& pinentry) {
    for (int asked = 1;; ++asked) {
        Pin pin = pinentry.pin();
        try {
            check_pin_form(pin);
            return pin;
        } catch (const Error& refused) {
            if (asked == MOST_FORMS) throw;
            pinentry.show("SETERROR", words::of(refused.sentence));
        }
    }
}

Error failure_of(const std::string& program, Assuan::Failure failure) {
    const char* sentence = failure == Assuan::Failure::ended    ? "pin-program-ended"
                           : failure == Assuan::Failure::silent ? "pin-program-silent"
                                                                : "pin-program-nonsense";
    return {Exit::refused, Sentence(sentence, {{"program", program}})};
}

} // namespace

std::string pinentry_program() {
    const std::string named = environment("ZVRENEW_PINENTRY");
    return named.empty() ? "pinentry" : named;
}

Pin pin_from_pinentry(const std::string& program, const CardFacts& card, const Patience& patience) {
    try {
        Pinentry pinentry(program, patience);
        pinentry.prepare();
        pinentry.show("SETDESC", description(card));
        pinentry.show("SETPROMPT", "PIN:");
        return pin_of_right_form(pinentry);
    } catch (const Assuan::Failure failure) {
        throw failure_of(program, failure);
    }
}

} // namespace cli
