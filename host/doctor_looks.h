#pragma once

#include "host/card_table.h"
#include "host/doctor.h"
#include "host/error.h"
#include "host/module_facts.h"
#include "host/pcsc_service.h"

#include <map>
#include <string>
#include <vector>

namespace zvhost {

// A card in a reader, as the doctor comes to know it.
struct ExaminedCard {
    std::string reader;
    std::string atr;
    std::string module; // file name; empty for an unknown card
    std::string module_path;
    bool services = false;
};

// What the doctor's looks have in common: each adds what it found, and what the later ones go by.
struct Looks {
    std::string module_dir = {};
    std::time_t now = 0;
    CardTable table = {};
    PcscService service = {};
    std::vector<ExaminedCard> cards = {};
    std::map<std::string, ModuleFacts> modules = {}; // by path
    Examination examination = {};

    void add(const char* topic, Health health, const char* sentence, Values values = {},
             std::vector<Advice> advice = {});
    // What another command would end with.
    void add(const char* topic, Health health, const Error& error);
};

void look_at_service(Looks& looks);
void look_at_table(Looks& looks);
void look_at_readers(Looks& looks);
void look_at_modules(Looks& looks);
void look_at_cards(Looks& looks);
void look_at_clock(Looks& looks);
void look_at_log(Looks& looks);
void look_at_temporary_files(Looks& looks);
void look_at_programs(Looks& looks);
void look_at_versions(Looks& looks);

// An advice whose sentence has the same values as a program is told.
[[nodiscard]] Advice advise(const char* key, const char* sentence, const Values& values = {});

} // namespace zvhost
