#pragma once

#include "tests/simcard_tool/test_cards.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace zvtest {

namespace fs = std::filesystem;

// A sanitizer in the card's module wants to be loaded before all else.
#ifdef __SANITIZE_ADDRESS__
inline constexpr const char* WITH_SANITIZER = "LD_PRELOAD=" ZV_ASAN_RUNTIME " ASAN_OPTIONS=detect_leaks=0 ";
#else
inline constexpr const char* WITH_SANITIZER = "";
#endif

// What a run of the program gave.
struct Outcome {
    int code = -1;
    std::string out;   // standard output
    std::string err;   // standard error
    std::string calls; // PKCS#11 calls made, one a line

    [[nodiscard]] bool says(const std::string& text) const {
        return out.find(text) != std::string::npos || err.find(text) != std::string::npos;
    }
    [[nodiscard]] std::size_t count(const std::string& function) const {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = calls.find(function + " ", at)) != std::string::npos; ++at)
            if (at == 0 || calls[at - 1] == '\n') ++found;
        return found;
    }
    // Whether any call could have changed the card.
    [[nodiscard]] bool changed_card() const {
        return count("C_GenerateKeyPair") + count("C_CreateObject") + count("C_DestroyObject") +
                   count("C_SetAttributeValue") !=
               0;
    }
};

// What "on_card" is when these identifiers have each a certificate and both keys.
inline nlohmann::json whole(const std::vector<std::string>& ids) {
    nlohmann::json list = nlohmann::json::array();
    for (const std::string& id : ids)
        list.push_back({{"id", id}, {"certificates", 1}, {"public_key", true}, {"private_key", true}});
    return list;
}

// zvrenew with a home, a working folder and simulated cards of the test's own.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        // Folders of the user's own, which a test has no business in.
        for (const char* name : {"XDG_STATE_HOME", "XDG_CONFIG_HOME"})
            ::unsetenv(name);
        fs::create_directory(home());
        fs::create_directory(work());
        simcard::write_file(passwd(),
                            "u:x:" + std::to_string(::getuid()) + ":" + std::to_string(::getgid()) +
                                "::" + home().string() + ":/bin/sh\n",
                            simcard::Access::owner_only);
        give_pin(simcard::DEFAULT_PIN);
    }

    // A card whose signature certificate, or a services card's own, ends in so many days.
    void make_card(int days = 12, const char* profile = "signature") {
        cards_.make({.profile = &simcard::profile_named(profile), .signature_days = days, .cns_days = days});
        cards_.configure();
    }
    // A card with signature pairs under these identifiers, certificates included.
    void make_card_with(const std::vector<const char*>& ids) {
        simcard::Profile profile = simcard::profile_named("signature");
        std::vector<simcard::PairPlan> pairs;
        for (const char* id : ids)
            pairs.push_back({id, "signature", &simcard::CardPlan::signature_days});
        profile.pairs = pairs;
        cards_.make({.profile = &profile});
        cards_.configure();
    }

    void give_pin(const std::string& pin) {
        simcard::write_file(pin_file(), pin + "\n", simcard::Access::owner_only);
    }

    // Runs zvrenew in the working folder; `rules` go to the simulated card.
    Outcome zvrenew(const std::string& arguments, const std::string& rules = {}) {
        return shell(command(arguments, rules));
    }
    // The same, with the PIN's file.
    Outcome with_pin(const std::string& arguments, const std::string& rules = {}) {
        return zvrenew(arguments + " --pin-file " + pin_file().string(), rules);
    }
    nlohmann::json json(const std::string& arguments) {
        return nlohmann::json::parse(with_pin(arguments + " --json").out);
    }

    // What the shell is told to run zvrenew.
    [[nodiscard]] std::string command(const std::string& arguments, const std::string& rules = {}) const {
        return "env LD_PRELOAD=" NSS_WRAPPER " ASAN_OPTIONS=verify_asan_link_order=0 NSS_WRAPPER_PASSWD=" +
               passwd().string() + " NSS_WRAPPER_GROUP=/etc/group ZVSIMCARD_TRACE=" + trace().string() +
               " ZVSIMCARD_RULES='" + rules + "' " ZVRENEW " " + arguments;
    }

    // Runs a command in the working folder.
    Outcome shell(const std::string& command) {
        fs::remove(trace());
        const fs::path errors = folder_.path() / "stderr";
        FILE* pipe =
            ::popen(("cd " + work().string() + " && " + command + " 2>" + errors.string()).c_str(), "r");
        Outcome outcome;
        std::array<char, 4096> piece{};
        while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
            outcome.out.append(piece.data(), count);
        outcome.code = WEXITSTATUS(::pclose(pipe));
        outcome.err = simcard::read_file(errors);
        if (fs::exists(trace())) outcome.calls = simcard::read_file(trace());
        return outcome;
    }

    // What the shell is told to look at the card with another program, logged in.
    static std::string other_program(const std::string& arguments) {
        return WITH_SANITIZER + std::string("pkcs11-tool --module " ZVSIMCARD_MODULE " -l --pin 12345678 ") +
               arguments;
    }
    Outcome tool(const std::string& arguments) { return shell(ZVSIMCARD_TOOL " " + arguments); }

    [[nodiscard]] fs::path home() const { return folder_.path() / "home"; }
    [[nodiscard]] fs::path work() const { return folder_.path() / "work"; }
    [[nodiscard]] fs::path file(const std::string& name) const { return work() / name; }
    [[nodiscard]] fs::path card_folder() const { return cards_.path() / "card"; }
    [[nodiscard]] fs::path trace() const { return folder_.path() / "trace"; }
    [[nodiscard]] fs::path pin_file() const { return folder_.path() / "pin"; }

  private:
    [[nodiscard]] fs::path passwd() const { return folder_.path() / "passwd"; }

    simcard::TestCards cards_;
    simcard::TemporaryFolder folder_{fs::temp_directory_path() / "zvrenew-test"};
};

} // namespace zvtest
