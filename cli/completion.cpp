#include "cli/completion.h"

#include "cli/options.h"
#include "host/kind.h"
#include "words/words.h"

#include <CLI/CLI.hpp>

namespace cli {
namespace {

// Collects what begins like the word.
class Candidates {
  public:
    explicit Candidates(std::string begun) : begun_(std::move(begun)) {}

    void add(const std::string& word, const std::string& meaning = {}) {
        if (word.starts_with(begun_)) lines_ += word + "\t" + meaning + "\n";
    }
    [[nodiscard]] bool none() const { return lines_.empty(); }
    [[nodiscard]] const std::string& lines() const { return lines_; }
    [[nodiscard]] const std::string& begun() const { return begun_; }

  private:
    std::string begun_;
    std::string lines_;
};

std::vector<const CLI::App*> commands_of(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App& command_of(const CLI::App& program, const std::vector<std::string>& words) {
    for (const CLI::App* command : commands_of(program))
        if (words.size() > 1 && words.front() == command->get_name()) return *command;
    return program;
}

// Reasons are separated by commas: the last of them is completed.
void add_reasons(Candidates& candidates) {
    const std::string before = candidates.begun().substr(0, candidates.begun().rfind(',') + 1);
    for (const std::string& reason : accepted_reasons())
        candidates.add(before + reason);
}

void add_options(Candidates& candidates, const CLI::App& command) {
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            candidates.add("--" + name, option->get_description());
}

void add_arguments(Candidates& candidates, const CLI::App& command) {
    for (const CLI::App* one : commands_of(command))
        candidates.add(one->get_name(), one->get_description());
    if (command.get_option_no_throw("KIND") == nullptr) return;
    for (const zv::KindRow& row : zv::KINDS)
        candidates.add(row.name, words::of(Sentence{"certificate-of-kind", {{"kind", row.id}}}));
}

bool takes_argument(const CLI::App& command) {
    const auto options = command.get_options();
    return std::any_of(options.begin(), options.end(),
                       [](const CLI::Option* option) { return option->get_positional(); });
}

} // namespace

std::string completions(const CLI::App& program, const std::vector<std::string>& words) {
    if (words.empty()) return {};
    const CLI::App& command = command_of(program, words);
    Candidates candidates(words.back());
    const std::string before = words.size() > 1 ? words[words.size() - 2] : "";
    const CLI::Option* option = before.starts_with('-') ? command.get_option_no_throw(before) : nullptr;
    if (option != nullptr && option->get_items_expected_max() > 0) {
        if (before == "--accept") add_reasons(candidates);
        return candidates.lines();
    }
    if (!words.back().starts_with('-')) add_arguments(candidates, command);
    if (candidates.none() && (words.back().starts_with('-') || !takes_argument(command)))
        add_options(candidates, command);
    return candidates.lines();
}

} // namespace cli
