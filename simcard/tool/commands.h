#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <filesystem>

// The tool's commands. Each adds itself to the program and runs when it is named; a failure is thrown.
namespace simcard {

/// Where the folder of cards is; known once the command line is read.
struct Home {
    std::string given;
    [[nodiscard]] std::filesystem::path path() const;
    /// The folder of the card of that name. @throws Refusal when there is no such card.
    [[nodiscard]] std::filesystem::path card(const std::string& name) const;
};

void add_create_command(CLI::App& program, const Home& home);
void add_list_command(CLI::App& program, const Home& home);
void add_card_commands(CLI::App& program, const Home& home); ///< reset, remove, eject, insert
void add_issue_command(CLI::App& program, const Home& home);
void add_config_command(CLI::App& program, const Home& home);

} // namespace simcard
