#include "tests/sweeps/bench.h"

#include "diag/messages.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/object_view.h"
#include "tests/support/process.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <csignal>
#include <optional>
#include <regex>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace zvtest {

namespace {

namespace fs = std::filesystem;

Files read_files(const fs::path& folder) {
    Files files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.path().filename() == simcard::CARD_FILE) continue;
        std::ostringstream bytes;
        bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        files[entry.path().filename()] = bytes.str();
    }
    return files;
}

void write_files(const fs::path& folder, const Files& files) {
    fs::create_directories(folder);
    const Files there = read_files(folder);
    for (const auto& [name, bytes] : there)
        if (!files.contains(name)) fs::remove(folder / name);
    for (const auto& [name, bytes] : files)
        if (const auto found = there.find(name); found == there.end() || found->second != bytes)
            std::ofstream(folder / name, std::ios::binary) << bytes;
}

// Holds the files of fixed names in /tmp while it lives; whoever waits for them gets them then.
class RequestFiles {
  public:
    ~RequestFiles() { lock_.reset(), ::usleep(1000); }

  private:
    std::optional<simcard::CardLock> lock_{fs::path(ZV_TEST_KEYS).parent_path()};
};

int open_files() {
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        count += ::fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    return count;
}

bool memory_leaks() {
#ifdef __SANITIZE_ADDRESS__
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

// Whether a text names a code by its message or its number; any failure where the code is not known.
bool names(const std::string& text, CK_RV code) {
    static const std::regex any("(Errore|Ret Code) = 0x[1-9]|error [1-9a-f]|: 0x[1-9A-F]");
    if (code == 0) return std::regex_search(text, any);
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, "(Errore|Ret Code) = 0x%d\n|error %lx\\)|: 0x%lX\\)",
                  static_cast<int>(code), code, code);
    const std::string message = zv::error_message(code);
    return (!message.empty() && has(text, message)) || std::regex_search(text, std::regex(numbers));
}

Told told_of(int result, const std::string& log, CK_RV code) {
    const auto host = static_cast<unsigned>(result);
    if (names(std::string(szBuffErr) + szSockMsg, code) ||
        (code != 0 ? host == code : result > 1 && host < 0xFFFF))
        return Told::host;
    if (names(log, code)) return Told::code;
    return has(log, "rrore") || has(log, "error!") ? Told::step : nobody;
}

} // namespace

// What a child process tells.
struct Bench::Shared {
    Attempt first, second;
    bool leaked, stuck, changed;
};

Bench::Bench(const FlowPlan& of)
    : plan(of), host_(of.profile),
      shared_(*static_cast<Shared*>(
          ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    std::optional<RequestFiles> held(std::in_place);
    for (const Use use : plan.before)
        use(host_);
    held.reset();
    files_ = read_files(host_.card.folder);
    start = objects_of(files_);
    undisturbed = run("", 0);
    held.emplace();
    write_files(host_.card.folder, files_);
    host_.module.record();
    plan.run(host_);
    std::istringstream calls(host_.module.recorded());
    for (std::string call; std::getline(calls, call);)
        functions.push_back(call.substr(0, call.find(' ')));
}

Attempt Bench::attempt(Use use, CK_RV code) {
    host_.log.clear();
    szSockMsg[0] = '\0';
    const Answer answer = use(host_);
    Attempt made{answer.result, std::hash<std::string>()(answer.data)};
    made.told = told_of(answer.result, host_.log.raw(), code);
    made.logins = host_.module.calls("C_Login");
    made.spent_try = host_.tries_left() != 3;
    host_.module.reset();
    CK_INFO info;
    made.open = host_.module->C_GetInfo(&info) == CKR_OK;
    return made;
}

// The second try is made in the same process, as by a host that goes on running.
void Bench::try_twice(const std::string& rule, CK_RV code) {
    const int files = open_files();
    host_.module.reset();
    host_.module.add_rules(rule);
    shared_.first = attempt(plan.run, code);
    host_.module.put_back();
    const Files between = read_files(host_.card.folder);
    shared_.changed = between != files_;
    if (shared_.changed) write_files(host_.log.folder() / "between", between);
    if (shared_.first.result != 0) shared_.second = attempt(plan.run, 0);
    kvFinalize();
    shared_.stuck = host_.module->C_Finalize(nullptr) == CKR_OK;
    shared_.leaked = zv::hModule != nullptr || open_files() > files || memory_leaks();
}

void Bench::run_apart(Trial& trial, const std::function<void()>& work) {
    const Ending ending = in_child([&work] {
        ::alarm(120);
        work();
        return 0;
    });
    trial.killed = trial.killed || ending.signal == SIGKILL;
    trial.crashed = trial.crashed || (ending.signal != SIGKILL && ending.code != 0);
    simcard::put_back_card(host_.card.folder);
}

Objects Bench::objects_of(const Files& files) {
    if (files == files_ && !start.empty()) return start;
    write_files(host_.card.folder, files);
    Objects lines;
    for (const simcard::ObjectView& object : simcard::view_objects(host_.card, SweepCard::PIN)) {
        const bool works = !object.ends.empty() && host_.pair_works(object.id);
        lines.push_back(object.object_class + "|" + object.id + (object.id.empty() ? object.label : "") +
                        "|" + object.ends + (works ? "|works" : "|"));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

Trial Bench::run(const std::string& rule, CK_RV code) {
    Trial trial;
    std::optional<RequestFiles> held;
    if (has(plan.name, "request")) held.emplace();
    shared_ = {};
    write_files(host_.card.folder, files_);
    run_apart(trial, [&] { try_twice(rule, code); });
    trial.first = shared_.first;
    trial.leaked = shared_.leaked;
    trial.stuck = shared_.stuck;
    Files after = read_files(host_.card.folder), between = after;
    if (!trial.killed) between = shared_.changed ? read_files(host_.log.folder() / "between") : files_;
    trial.between = objects_of(between);
    const auto again = [&](Use use, const Files& files) {
        write_files(host_.card.folder, files);
        run_apart(trial, [&] { shared_.second = attempt(use, 0); });
        return read_files(host_.card.folder);
    };
    if (trial.killed) after = again(plan.run, between);
    trial.second = shared_.second;
    trial.after = after == between ? trial.between : objects_of(after);
    if (plan.remedy == nullptr || trial.second.result == 0) return trial;
    trial.remedied = objects_of(again(plan.remedy, after));
    trial.remedy = shared_.second;
    return trial;
}

} // namespace zvtest
