#include "simcard/common/card_folder.h"
#include "simcard/control.h"
#include "simcard/module/control.h"

#include <algorithm>
#include <exception>
#include <iostream>

#define ZVSIMCARD_EXPORT __attribute__((visibility("default")))

namespace {

using simcard::control;
using simcard::gate;

// Changes the card in a slot by `change`; 0 when that was done.
int change_card(unsigned long slot, void (*change)(const std::filesystem::path&)) noexcept {
    try {
        const std::lock_guard held(gate());
        const auto folder = simcard::folder_of_slot(slot);
        if (!folder) return 1;
        change(*folder);
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "zvsimcard: " << problem.what() << '\n';
        return 1;
    }
}

} // namespace

extern "C" {

ZVSIMCARD_EXPORT int zvsimcard_add_rules(const char* rules) {
    const std::lock_guard held(gate());
    return control().add_rules(rules ? rules : "");
}

ZVSIMCARD_EXPORT unsigned long zvsimcard_rules_left(void) {
    const std::lock_guard held(gate());
    return control().rules_left();
}

ZVSIMCARD_EXPORT void zvsimcard_reset(void) {
    const std::lock_guard held(gate());
    control().reset();
}

ZVSIMCARD_EXPORT unsigned long zvsimcard_calls(const char* function) {
    const std::lock_guard held(gate());
    if (!function) return control().calls(std::nullopt);
    const auto known = pkcs11::function_named(function);
    return known ? control().calls(known) : 0;
}

ZVSIMCARD_EXPORT void zvsimcard_record(int on) {
    const std::lock_guard held(gate());
    control().set_recording(on != 0);
}

ZVSIMCARD_EXPORT unsigned long zvsimcard_recorded(char* text, unsigned long size) {
    const std::lock_guard held(gate());
    const std::string& record = control().recorded();
    if (text && size != 0) {
        const auto length = std::min<unsigned long>(record.size(), size - 1);
        std::copy_n(record.begin(), length, text);
        text[length] = '\0';
    }
    return record.size();
}

ZVSIMCARD_EXPORT int zvsimcard_take_out(unsigned long slot) {
    return change_card(slot, simcard::take_out_card);
}

ZVSIMCARD_EXPORT int zvsimcard_put_back(unsigned long slot) {
    return change_card(slot, simcard::put_back_card);
}

ZVSIMCARD_EXPORT void zvsimcard_use_keys(const char* file) {
    const std::lock_guard held(gate());
    control().set_key_file(file ? file : "");
}
}
