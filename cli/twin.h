#pragma once

#include "cli/child.h"
#include "cli/json.h"
#include "cli/private_folder.h"
#include "cli/twin_programs.h"
#include "host/public_card.h"

#include <string>
#include <vector>

namespace cli {

// What a program printed, and the code that it ended with.
struct ChildResult {
    int exit = 0;
    std::string text;
};

// A simulated card like a real one, in a folder that goes with it: nothing that is done here leaves that. What runs there
// reaches neither the real readers nor the user's settings, log and state.
class Twin {
  public:
    // Makes it. @throws Error
    Twin(const zvhost::PublicCard& original, const SimulatedCard& programs, const HeldSignals& signals);

    // Runs this program with these words, on the twin. What it says of the folder is left out.
    [[nodiscard]] ChildResult renew(std::vector<std::string> words) const;
    // Has the simulated authority answer the request in one file with a certificate in another.
    [[nodiscard]] ChildResult issue(const std::string& request, const std::string& kind,
                                    const std::string& certificate) const;
    // What is on the twin, a list of objects. @throws Error
    [[nodiscard]] Json objects() const;

  private:
    void make(const zvhost::PublicCard& original) const;
    [[nodiscard]] ChildResult tool(std::vector<std::string> words) const;
    [[nodiscard]] ChildResult run(std::vector<std::string> words) const;
    [[nodiscard]] std::string without_folder(const std::string& text) const;

    SimulatedCard programs_;
    const HeldSignals& signals_;
    PrivateFolder folder_;
};

} // namespace cli
