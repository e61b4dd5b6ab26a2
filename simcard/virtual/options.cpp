#include "simcard/virtual/options.h"

#include "simcard/common/hexadecimal.h"
#include "simcard/virtual/applet_iso.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace simcard {
namespace {

// An option: one with a value has a name for it.
struct Option {
    const char* name;
    const char* value;
    const char* meaning;
    void (*set)(Options&, const std::string&);
};

void set_port(Options& options, const std::string& text) {
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, options.port);
    if (error != std::errc() || stopped != end || options.port == 0)
        throw WrongUsage("\"" + text + "\" is not a port (1 to 65535).");
}

void set_atr(Options& options, const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c != ' ' && c != ':'; });
    const auto bytes = from_hexadecimal(digits);
    if (!bytes || bytes->size() < 2 || bytes->size() > LONGEST_ATR)
        throw WrongUsage("\"" + text + "\" is not an ATR (2 to 33 bytes in hexadecimal).");
    options.atr.assign(bytes->begin(), bytes->end());
}

constexpr std::array KNOWN_OPTIONS = {
    Option{"--port", "NUMBER", "TCP port of the virtual reader on this machine (36865)", set_port},
    Option{"--atr", "HEX", "answer to reset of the card (3B80800101)", set_atr},
    Option{"--mute", nullptr, "the card gives no answer to a reset",
           [](Options& options, const std::string&) { options.mute = true; }},
    Option{"--applet", "NAME", "what answers its commands: none (6D00 to each), iso (IsoApplet)",
           [](Options& options, const std::string& name) { options.applet = name; }},
    Option{"--help", nullptr, "this text", [](Options& options, const std::string&) { options.help = true; }},
};

// An applet that can be chosen by its name.
struct KnownApplet {
    const char* name;
    std::unique_ptr<Applet> (*make)(const Options&);
};

constexpr std::array KNOWN_APPLETS = {
    KnownApplet{"none",
                [](const Options&) -> std::unique_ptr<Applet> { return std::make_unique<EmptyApplet>(); }},
    KnownApplet{"iso",
                [](const Options&) -> std::unique_ptr<Applet> { return std::make_unique<IsoApplet>(); }},
};

} // namespace

Options parse_options(const std::vector<std::string>& arguments) {
    Options options;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const auto* option = std::find_if(KNOWN_OPTIONS.begin(), KNOWN_OPTIONS.end(),
                                          [&](const Option& known) { return *argument == known.name; });
        if (option == KNOWN_OPTIONS.end()) throw WrongUsage("Unknown option: " + *argument);
        const bool valued = option->value != nullptr;
        if (valued && argument + 1 == arguments.end()) throw WrongUsage(*argument + " needs a value.");
        if (valued) ++argument;
        option->set(options, *argument);
    }
    return options;
}

std::string usage() {
    std::string text = "zvvirtualcard: plays a smart card in a virtual reader of the PC/SC service.\n";
    for (const Option& option : KNOWN_OPTIONS) {
        std::string line = "  " + std::string(option.name) + (option.value == nullptr ? "" : " ") +
                           (option.value == nullptr ? "" : option.value);
        line.resize(std::max<std::size_t>(line.size() + 1, 20), ' ');
        text += line + option.meaning + "\n";
    }
    return text + "Exit codes: 0 the card was taken out, 1 failed, 2 mistyped.\n";
}

std::unique_ptr<Applet> make_applet(const Options& options) {
    const auto* applet = std::find_if(KNOWN_APPLETS.begin(), KNOWN_APPLETS.end(),
                                      [&](const KnownApplet& known) { return options.applet == known.name; });
    if (applet == KNOWN_APPLETS.end()) throw WrongUsage("Unknown applet: " + options.applet);
    return applet->make(options);
}

} // namespace simcard
