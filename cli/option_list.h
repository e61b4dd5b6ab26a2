#pragma once

#include "cli/engine.h"
#include "host/kind.h"
#include "host/sentence.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the parser library's own name
class App;
}

namespace cli {

// The options that a command declares: where the command line puts what it finds, and what --help says.
class OptionList {
  public:
    explicit OptionList(CLI::App& command) : command_(command) {}

    void flag(const char* name, bool& field, const char* meaning);
    // @param shown  what its value is called
    void text(const char* name, const char* shown, std::string& field, const char* meaning);
    void descriptor(const char* name, int& field, const char* meaning);
    // Without a value: as long as it takes.
    void wait(const char* name, std::function<bool(const Sentence&)>& field, const char* meaning);
    void days(const char* name, int& field, const char* meaning);
    // Some of the words that are known, separated by commas; they are added to the meaning.
    void words(const char* name, const char* shown, std::vector<std::string>& field,
               const std::vector<std::string>& known, const char* meaning);
    // What has to be given, without a name.
    void argument(const char* shown, std::string& field, const char* meaning);
    void language(const char* name, std::string& field);
    void kind(const char* shown, Kind& field, const char* meaning);

  private:
    CLI::App& command_;
};

} // namespace cli
