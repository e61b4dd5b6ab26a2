#include "cli/reminder_switch.h"

#include "cli/run_quietly.h"
#include "host/installation.h"
#include "host/journal.h"
#include "host/user_folders.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace cli {
namespace {

constexpr const char* TIMER = "zvrenew-remind.timer";
constexpr const char* ENTRY = "zvrenew-remind.desktop";

bool users_systemd(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"systemctl", "--user", "--quiet"});
    return run_quietly(arguments);
}

// Units can be turned on where no manager runs, and nothing would come of it.
bool systemd_runs() {
    return users_systemd({"is-active", "timers.target"});
}

fs::path users_entry() {
    const std::string folder = configuration_folder();
    if (folder.empty()) throw Error(Exit::failed, {"no-home", {}});
    return fs::path(folder) / "autostart" / ENTRY;
}

// The entry that was installed with this program.
fs::path installed_entry() {
    return fs::path(program_folder()).parent_path() / ZV_DATADIR / "zvrenew" / ENTRY;
}

void remove_entry() {
    std::error_code error;
    fs::remove(users_entry(), error);
    if (error)
        throw Error(Exit::failed, {"reminders-entry-left",
                                   {{"file", users_entry().string()}, {"reason", error.message()}}});
}

void copy_entry() {
    std::error_code error;
    fs::create_directories(users_entry().parent_path(), error);
    if (!error) fs::copy_file(installed_entry(), users_entry(), fs::copy_options::overwrite_existing, error);
    if (error)
        throw Error(Exit::failed, {"reminders-not-on",
                                   {{"from", installed_entry().string()},
                                    {"file", users_entry().string()},
                                    {"reason", error.message()}}});
}

// Reminders are of cards that this computer saw.
std::vector<Advice> first_step() {
    if (!Journal().cards().empty()) return {};
    return {Advice{"show-card", {"show-card-first", {}}}};
}

} // namespace

Switched turn_reminders_on() {
    if (systemd_runs() && users_systemd({"enable", "--now", TIMER})) {
        remove_entry(); // of an earlier time
        return Switched{"systemd", {}, {"reminders-by-systemd", {{"timer", TIMER}}}, first_step()};
    }
    copy_entry();
    const std::string file = users_entry();
    return Switched{"autostart", file, {"reminders-by-autostart", {{"file", file}}}, first_step()};
}

Switched turn_reminders_off() {
    // A timer that is not installed cannot be turned off, nor is it on.
    if (systemd_runs() && !users_systemd({"disable", "--now", TIMER}) && users_systemd({"is-enabled", TIMER}))
        throw Error(Exit::failed, {"reminders-timer-left", {{"timer", TIMER}}});
    remove_entry();
    return {{}, {}, {"reminders-off", {}}, {}};
}

} // namespace cli
