#pragma once

#include "host/sentence.h"

namespace zvhost {

// What a plan that is carried out tells whoever shows it. It is called by the thread that carries out the plan, which
// waits for it.
class Progress {
  public:
    Progress() = default;
    virtual ~Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Something that a person should know before it happens.
    virtual void notice(const Sentence& sentence) { (void)sentence; }
    // From here on the card is changed: who is ended now may leave it without what it had.
    virtual void changing() {}
};

} // namespace zvhost
