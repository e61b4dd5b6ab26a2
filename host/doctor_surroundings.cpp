#include "host/doctor_looks.h"
#include "host/lock.h"
#include "host/log_folder.h"
#include "zvRenew.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <optional>

namespace zvhost {
namespace {

namespace fs = std::filesystem;

// Before and after these the clock of a machine that reads cards is not set.
constexpr std::time_t YEAR_2025 = 1735689600;
constexpr std::time_t YEAR_2100 = 4102444800;

// What a request passes through /tmp.
constexpr long LEAST_ROOM = 256L * 1024;

std::optional<struct stat> status_of_file(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

Advice advise_to_remove(const std::string& file, const struct stat& status) {
    const char* sentence = status.st_uid == ::geteuid() ? "doctor-remove-own" : "doctor-have-removed";
    return advise("remove-file", sentence, {{"file", file}, {"owner", owner_of(status.st_uid)}});
}

// The library writes to a plain file of the user's own alone.
void tell_log_file(Looks& looks, const std::string& log) {
    const auto status = status_of_file(log);
    if (!status) return looks.add("log", Health::right, "doctor-log-none-yet", {{"file", log}});
    const Values values = {
        {"file", log}, {"size", static_cast<long>(status->st_size)}, {"owner", owner_of(status->st_uid)}};
    const bool usable =
        S_ISREG(status->st_mode) && status->st_uid == ::geteuid() && ::access(log.c_str(), R_OK | W_OK) == 0;
    if (usable) return looks.add("log", Health::right, "doctor-log", values);
    looks.add("log", Health::wrong, "doctor-log-unusable", values, {advise_to_remove(log, *status)});
}

// What is in the way of a file of the library, or what a run left.
void tell_temporary_file(Looks& looks, const std::string& file) {
    const auto status = status_of_file(file);
    if (!status) return;
    const Values values = {{"file", file}, {"owner", owner_of(status->st_uid)}};
    const bool own = status->st_uid == ::geteuid() && !S_ISDIR(status->st_mode);
    looks.add("temporary-files", own ? Health::warning : Health::wrong,
              own ? "doctor-left-over" : "doctor-in-the-way", values, {advise_to_remove(file, *status)});
}

// That the file is there says nothing: a lock may be held.
void tell_lock(Looks& looks, const std::string& file) {
    const auto status = status_of_file(file);
    if (!status) return;
    if (!S_ISREG(status->st_mode))
        return looks.add("temporary-files", Health::wrong, "doctor-in-the-way",
                         {{"file", file}, {"owner", owner_of(status->st_uid)}},
                         {advise_to_remove(file, *status)});
    const int process = process_that_locks(file);
    if (process <= 0) return;
    const Values values = {{"process", long{process}}, {"owner", owner_of(status->st_uid)}};
    looks.add("temporary-files", Health::warning, "doctor-at-work", values,
              {advise("wait", "doctor-wait", {{"process", long{process}}})});
}

void tell_folder(Looks& looks) {
    struct statvfs room {};
    const Values values = {{"folder", std::string(ZV_TEMP_FOLDER)}};
    if (::access(ZV_TEMP_FOLDER, W_OK | X_OK) != 0 || ::statvfs(ZV_TEMP_FOLDER, &room) != 0)
        return looks.add("temporary-files", Health::wrong, "doctor-folder-closed", values,
                         {advise("free-tmp", "doctor-open-folder", values)});
    const auto free = static_cast<long>(room.f_bavail * room.f_frsize);
    if (free < LEAST_ROOM)
        return looks.add("temporary-files", Health::wrong, "doctor-folder-full",
                         {{"folder", std::string(ZV_TEMP_FOLDER)}, {"free", free}},
                         {advise("free-tmp", "doctor-empty-folder", values)});
    looks.add("temporary-files", Health::right, "doctor-folder",
              {{"folder", std::string(ZV_TEMP_FOLDER)}, {"free", free}});
}

std::vector<std::string> lock_files() {
    std::vector<std::string> files;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(ZV_TEMP_FOLDER, none)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("zvrenew-") && name.ends_with(".lock")) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string minute_of(std::time_t time) {
    std::tm utc{};
    std::string text(32, '\0');
    ::gmtime_r(&time, &utc);
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &utc));
    return text;
}

} // namespace

void look_at_clock(Looks& looks) {
    const bool plausible = looks.now >= YEAR_2025 && looks.now < YEAR_2100;
    std::vector<Advice> advice;
    if (!plausible) advice.push_back(advise("set-clock", "doctor-set-clock"));
    looks.add("clock", plausible ? Health::right : Health::wrong,
              plausible ? "doctor-clock" : "doctor-clock-off", {{"now", minute_of(looks.now)}},
              std::move(advice));
}

void look_at_log(Looks& looks) {
    const std::string log = log_path();
    if (log.empty()) return looks.add("log", Health::warning, "doctor-log-nowhere");
    const std::string folder = fs::path(log).parent_path();
    struct stat status {};
    if (::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
        ::access(folder.c_str(), W_OK | X_OK) == 0)
        return tell_log_file(looks, log);
    const auto there = status_of_file(folder);
    std::vector<Advice> advice;
    if (there && !S_ISDIR(there->st_mode)) advice.push_back(advise_to_remove(folder, *there));
    if (there && S_ISDIR(there->st_mode))
        advice.push_back(advise("open-folder", "doctor-open-log-folder", {{"folder", folder}}));
    looks.add("log", Health::wrong, "doctor-log-folder", {{"folder", folder}}, std::move(advice));
}

void look_at_temporary_files(Looks& looks) {
    tell_folder(looks);
    const std::size_t before = looks.examination.findings.size();
    for (const std::string& file : lock_files())
        tell_lock(looks, file);
    // While another program is at work its files are no leftovers.
    if (looks.examination.findings.size() > before) return;
    for (const char* file : {ZV_REQUEST_FILE, ZV_SIGNED_FILE, ZV_BASE64_FILE})
        tell_temporary_file(looks, file);
}

} // namespace zvhost
