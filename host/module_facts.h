#pragma once

#include "host/card_view.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// A slot of a module, and what the card in it shows to everybody.
struct SlotFacts {
    CK_SLOT_ID id = 0;
    std::string description = {};
    bool card = false;
    std::optional<CK_TOKEN_INFO> token = {}; // none when the card could not be asked
    std::vector<CardObject> objects = {};

    [[nodiscard]] std::string serial() const;
};

// How far a module comes when it is used.
struct ModuleFacts {
    enum class Stage { loading, starting, listing, reading, ending, done };

    Stage reached = Stage::loading; // what it was at last
    bool is_module = true;
    std::string problem;    // why the system does not load it
    CK_RV started = CKR_OK; // what it answered when it was started
    std::optional<CK_INFO> info;
    std::vector<SlotFacts> slots;
    int signal = 0; // that ended its process
    bool late = false;

    [[nodiscard]] bool usable() const { return reached == Stage::done && signal == 0 && !late; }
};

constexpr int MOST_SECONDS_OF_A_MODULE = 60;

// Loads a module, starts it and asks for its slots and cards, without a login, in a process of its own.
[[nodiscard]] ModuleFacts ask_module(const std::string& path);

} // namespace zvhost
