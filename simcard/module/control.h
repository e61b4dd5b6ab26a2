#pragma once

#include "simcard/module/call.h"
#include "simcard/module/rooms.h"
#include "simcard/module/rules.h"

#include <array>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace simcard {

// What simcard/control.h lets a test do to the calls of this process. It outlives C_Finalize.
class Control {
  public:
    // Takes rules, trace and key file from the environment.
    Control();

    // Does a call through `perform`, or not, as the rules say; counts and records it.
    [[nodiscard]] CK_RV around(const Call& call, const std::function<CK_RV()>& perform);

    [[nodiscard]] bool environment_understood() const { return environment_understood_; }
    // 0, or the number of the first rule that is not understood.
    [[nodiscard]] int add_rules(std::string_view text);
    [[nodiscard]] unsigned long rules_left() const;
    [[nodiscard]] unsigned long calls(std::optional<Function> function) const;
    [[nodiscard]] const std::string& recorded() const { return recorded_; }
    [[nodiscard]] const std::filesystem::path& key_file() const { return key_file_; }
    void set_recording(bool on) { recording_ = on; }
    void set_key_file(std::filesystem::path file) { key_file_ = std::move(file); }
    void reset();

  private:
    using Due = std::vector<Deed>;
    [[nodiscard]] Due due(Function function);
    void act_before(const Due& deeds, const Call& call, const Rooms& rooms);
    void record(const Call& call, const Rooms& rooms, std::optional<CK_RV> result);

    std::vector<Rule> rules_;
    std::array<unsigned long, pkcs11::FUNCTION_COUNT> counts_{};
    std::filesystem::path key_file_;
    std::filesystem::path trace_file_;
    std::string recorded_;
    bool recording_ = false;
    bool environment_understood_ = true;
};

// The one control of this copy of the module.
[[nodiscard]] Control& control();

// Held during every call into the module: a card does one thing at a time.
[[nodiscard]] std::mutex& gate();

// The folder of the card in a slot, whether the module is initialised or not.
[[nodiscard]] std::optional<std::filesystem::path> folder_of_slot(CK_SLOT_ID slot);

} // namespace simcard
