#include "cli/progress_lines.h"

#include "cli/note.h"
#include "cli/signals.h"

namespace cli {

void ProgressLines::notice(const Sentence& sentence) {
    note(sentence);
}

void ProgressLines::changing() {
    hold_signals();
}

} // namespace cli
