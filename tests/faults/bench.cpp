#include "tests/faults/bench.h"

#include "diag/messages.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/object_view.h"
#include "tests/support/process.h"

#include <csignal>
#include <fcntl.h>
#include <optional>
#include <regex>
#include <sys/mman.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace zvtest {

namespace {

namespace fs = std::filesystem;

Files readFiles(const fs::path& folder) {
    Files files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.path().filename() == simcard::card_file) continue;
        std::ostringstream bytes;
        bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        files[entry.path().filename()] = bytes.str();
    }
    return files;
}

void writeFiles(const fs::path& folder, const Files& files) {
    fs::create_directories(folder);
    const Files there = readFiles(folder);
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

int openFiles() {
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        count += ::fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    return count;
}

bool memoryLeaks() {
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
    const std::string message = zv::errorMessage(code);
    return (!message.empty() && has(text, message)) || std::regex_search(text, std::regex(numbers));
}

Told toldOf(int result, const std::string& log, CK_RV code) {
    const auto host = static_cast<unsigned>(result);
    if (names(std::string(szBuffErr) + szSockMsg, code) ||
        (code != 0 ? host == code : result > 1 && host < 0xFFFF))
        return HOST;
    if (names(log, code)) return CODE;
    return has(log, "rrore") || has(log, "error!") ? STEP : NOBODY;
}

} // namespace

/// What a child process tells.
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
    files_ = readFiles(host_.card.folder);
    start = objectsOf(files_);
    undisturbed = run("", 0);
    held.emplace();
    writeFiles(host_.card.folder, files_);
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
    made.told = toldOf(answer.result, host_.log.raw(), code);
    made.logins = host_.module.calls("C_Login");
    made.spentTry = host_.triesLeft() != 3;
    host_.module.reset();
    CK_INFO info;
    made.open = host_.module->C_GetInfo(&info) == CKR_OK;
    return made;
}

// The second try is made in the same process, as by a host that goes on running.
void Bench::tryTwice(const std::string& rule, CK_RV code) {
    const int files = openFiles();
    host_.module.reset();
    host_.module.add_rules(rule);
    shared_.first = attempt(plan.run, code);
    host_.module.put_back();
    const Files between = readFiles(host_.card.folder);
    shared_.changed = between != files_;
    if (shared_.changed) writeFiles(host_.log.folder() / "between", between);
    if (shared_.first.result != 0) shared_.second = attempt(plan.run, 0);
    kvFinalize();
    shared_.stuck = host_.module->C_Finalize(nullptr) == CKR_OK;
    shared_.leaked = zv::hModule != nullptr || openFiles() > files || memoryLeaks();
}

void Bench::inChild(Trial& trial, const std::function<void()>& work) {
    const Ending ending = in_child([&work] {
        ::alarm(120);
        work();
        return 0;
    });
    trial.killed = trial.killed || ending.signal == SIGKILL;
    trial.crashed = trial.crashed || (ending.signal != SIGKILL && ending.code != 0);
    simcard::put_back_card(host_.card.folder);
}

Objects Bench::objectsOf(const Files& files) {
    if (files == files_ && !start.empty()) return start;
    writeFiles(host_.card.folder, files);
    Objects lines;
    for (const simcard::ObjectView& object : simcard::view_objects(host_.card, SweepCard::PIN)) {
        const bool works = !object.ends.empty() && host_.pairWorks(object.id);
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
    writeFiles(host_.card.folder, files_);
    inChild(trial, [&] { tryTwice(rule, code); });
    trial.first = shared_.first;
    trial.leaked = shared_.leaked;
    trial.stuck = shared_.stuck;
    Files after = readFiles(host_.card.folder), between = after;
    if (!trial.killed) between = shared_.changed ? readFiles(host_.log.folder() / "between") : files_;
    trial.between = objectsOf(between);
    const auto again = [&](Use use, const Files& files) {
        writeFiles(host_.card.folder, files);
        inChild(trial, [&] { shared_.second = attempt(use, 0); });
        return readFiles(host_.card.folder);
    };
    if (trial.killed) after = again(plan.run, between);
    trial.second = shared_.second;
    trial.after = after == between ? trial.between : objectsOf(after);
    if (plan.remedy == nullptr || trial.second.result == 0) return trial;
    trial.remedied = objectsOf(again(plan.remedy, after));
    trial.remedy = shared_.second;
    return trial;
}

} // namespace zvtest
