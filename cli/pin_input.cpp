#include "cli/pin_input.h"

#include "cli/note.h"
#include "cli/pin_descriptor.h"
#include "cli/pin_question.h"
#include "cli/pin_terminal.h"
#include "cli/pinentry.h"
#include "cli/read_char.h"
#include "host/error.h"
#include "host/scoped_fd.h"
#include "words/words.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace cli {
namespace {

void warn_when_others_can_read(int fd, const std::string& path) {
    struct stat status {};
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        note(Sentence{"pin-file-open", {{"file", path}}});
}

Pin pin_from_file(const std::string& path) {
    const ScopedFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        throw Error(Exit::refused,
                    Sentence{"pin-file-unread", {{"file", path}, {"reason", std::strerror(errno)}}});
    warn_when_others_can_read(file.get(), path);
    Pin pin;
    char c = 0;
    while (!pin.full() && read_char(file.get(), c) == 1)
        pin.add(c);
    c = '\0';
    if (pin.view().ends_with('\n')) pin.remove_last();
    if (pin.view().ends_with('\r')) pin.remove_last();
    return pin;
}

Pin copy_of(const Pin& pin) {
    Pin copy;
    for (const char c : pin.view())
        copy.add(c);
    return copy;
}

void refuse_several_sources(const CardOptions& options) {
    const int sources = int{!options.pin_file.empty()} + int{options.pin_fd >= 0} + int{options.pinentry};
    if (sources > 1) throw Error(Exit::refused, Sentence("pin-several-sources", {}));
}

} // namespace

PinInput::PinInput(const CardOptions& options) : options_(options) {
    refuse_several_sources(options);
    // Now, as long as nothing else has got its number.
    if (options.pin_fd >= 0) given_.emplace(pin_from_descriptor(options.pin_fd));
}

std::optional<Pin> PinInput::at_once() {
    if (refused_) throw Error(Exit::refused, Sentence("pin-refused-before", {}));
    if (given_) return copy_of(*given_);
    if (options_.pin_file.empty()) return std::nullopt;
    return pin_from_file(options_.pin_file);
}

Pin PinInput::ask(const CardFacts& card) {
    if (options_.pinentry) return pin_from_pinentry(pinentry_program(), card);
    for (const Sentence& sentence : about_pin(card))
        note(sentence);
    return pin_from_terminal(words::of(Sentence{"pin-prompt", {{"reader", card.reader}}}));
}

} // namespace cli
