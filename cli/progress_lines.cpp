#include "cli/progress_lines.h"

#include "cli/ending_signals.h"
#include "cli/note.h"
#include "cli/signals.h"

namespace cli {

void ProgressLines::notice(const Sentence& sentence) {
    note(sentence);
}

void ProgressLines::changing() {
    hold_signals();
}

void ProgressLines::step(const Step& step) {
    heartbeat_.reset();
    heartbeat_.emplace(step);
}

bool ProgressLines::cancelled() {
    return told_to_end();
}

void ProgressLines::done() {
    heartbeat_.reset();
    if (told_to_end()) note(Sentence("stopped-too-late", {}));
}

} // namespace cli
