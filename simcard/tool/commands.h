#pragma once

#include "simcard/authority/renewal.h"
#include "simcard/tool/card_plan.h"
#include "simcard/tool/secret.h"

#include <filesystem>
#include <string>

// The tool's commands, each with what the command line gave for it. A failure is thrown.
namespace simcard {

// Where the folder of cards is; known once the command line is read.
struct Home {
    std::string given;
    [[nodiscard]] std::filesystem::path path() const;
    // The folder of the card of that name. @throws Refusal when there is no such card.
    [[nodiscard]] std::filesystem::path card(const std::string& name) const;
};

struct CreateOptions {
    CardPlan plan;
    std::string profile = "signature";
    std::string keys;
    std::string configuration;
};
void create(CreateOptions& options, const std::filesystem::path& home);

struct TwinOptions {
    CardPlan plan;
    std::string description;
    std::string keys;
    std::string configuration;
    std::string module;
};
// Makes a card like the one that a file describes: see twin_description.h.
void twin(TwinOptions& options, const std::filesystem::path& home);

struct ListOptions {
    std::string card; // empty: every card
    Secret pin;
    bool json = false;
};
void list(const ListOptions& options, const Home& home);

void reset(const std::filesystem::path& card);
void remove(const std::filesystem::path& card);
void eject(const std::filesystem::path& card);
void insert(const std::filesystem::path& card);

struct IssueOptions {
    std::string request;
    std::string kind;
    std::string out;
    RenewalTerms terms;
    bool der = false;
    bool bundle = false;
};
void issue(IssueOptions& options, const std::filesystem::path& home);

// Writes the zvcrypt.conf that brings in the cards; an empty file name is the standard output.
void write_configuration(const std::string& file, const std::filesystem::path& home);

} // namespace simcard
