#pragma once

namespace zvhost {

// Takes what writing the journal gave: 0, or the system's error number, which journal_problem then tells.
void note_journal(int error);

} // namespace zvhost
