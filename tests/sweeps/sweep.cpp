// Lets every call of every flow fail in every way and judges what is left: fault_sweep all|FLOW [EVERY]. Writes the
// tables of docs/sweep.md; fails, and says of which case, when something is lost or the outcome has no name there.
#include "tests/sweeps/bench.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <numeric>
#include <regex>

namespace {

using namespace zvtest;

constexpr const char* DEEDS[] = {
    "answer:0x5",  "answer:0x6",  "answer:0x30",        "answer:0x31",  "answer:0x32",        "answer:0x101",
    "answer:0xE0", "answer:0xE1", "answer:0x80000001",  "take-out",     "do-and-answer:0x30", "kill-before",
    "kill-after",  "absurd:text", "absurd:unavailable", "absurd:count", "absurd:length"};

// What becomes of a case. From `between` on the rules leave the card worse, or the host uninformed.
enum Kind { done, again, between, keep, twice, half, reused, refused, less, rest, marker, two, lost, kinds };
constexpr char KIND_HEADS[] =
    "| flow | calls | cases | done | second try | A | B | C | D | E | F | G | H | I | J | lost |";
constexpr char TOLD_HEADS[] = "| flow | host | log: code | log: step | nobody | module open |";
constexpr std::size_t CALLS = 0, CASES = 1, FIRST_KIND = 2, FIRST_TOLD = FIRST_KIND + kinds;
constexpr std::size_t OPEN = FIRST_TOLD + told, WRONG = OPEN + 1, COLUMNS = WRONG + 1;
using Row = std::array<unsigned, COLUMNS>;

Objects lacking_in(const Objects& all, const Objects& without) {
    Objects rest;
    std::set_difference(all.begin(), all.end(), without.begin(), without.end(), std::back_inserter(rest));
    return rest;
}

bool are_all(const Objects& objects, const std::string& pattern) {
    const std::regex wanted(pattern);
    return std::all_of(objects.begin(), objects.end(),
                       [&](const std::string& object) { return std::regex_search(object, wanted); });
}

// What no rule deletes is there and works.
bool is_whole(const Bench& bench, const Objects& objects) {
    return are_all(lacking_in(bench.start, objects), bench.plan.deletes);
}

bool has_two_pairs(const Bench& bench, const Objects& objects) {
    const std::string pending = std::string("private key|") + bench.plan.pending + "||";
    return std::count(objects.begin(), objects.end(), pending) > 1;
}

// A case whose host was not told of any failure.
Kind hidden_kind(const Bench& bench, const Trial& trial, const Objects& missing, const Objects& more) {
    if (trial.first.data == std::hash<std::string>()(REFUSAL)) return refused;
    if (missing.empty() && more.empty()) return has(bench.plan.name, "request") ? reused : less;
    if (are_all(missing, "pending_CNS_key") && are_all(more, "pending_CNS_key")) return marker;
    return missing.empty() && are_all(more, bench.plan.deletes) ? rest : lost;
}

Kind kind_of(const Bench& bench, const Trial& trial, const std::string& deed) {
    const Trial& good = bench.undisturbed;
    const auto is_good = [&](const Attempt& attempt, const Objects& objects) {
        return attempt.result == 0 && attempt.data == good.first.data && objects == good.after;
    };
    if (!is_whole(bench, trial.between) || !is_whole(bench, trial.after)) return lost;
    if (has_two_pairs(bench, trial.between) || has_two_pairs(bench, trial.after))
        return deed == "absurd:text" ? two : lost;
    const Objects lacking = lacking_in(good.after, trial.between);
    if (!trial.killed && is_good(trial.first, trial.between)) return done;
    if (!trial.killed && trial.first.result == 0)
        return hidden_kind(bench, trial, lacking, lacking_in(trial.between, good.after));
    if (is_good(trial.second, trial.after))
        return lacking.empty() || lacking_in(bench.start, trial.between).empty() ? again : between;
    if (is_good(trial.remedy, trial.remedied)) return keep;
    const Objects missing = lacking_in(good.after, trial.after), more = lacking_in(trial.after, good.after);
    const std::string pair = std::string("\\|") + bench.plan.pending + "\\|";
    if (trial.second.result != 0 || missing.size() + more.size() != 1) return lost;
    if (are_all(missing, "^$") && are_all(more, "certificate" + pair + ".*works")) return twice;
    return are_all(more, "^$") && are_all(missing, "public key" + pair) ? half : lost;
}

// What must not happen whatever becomes of the card; empty when nothing of it did.
std::string wrong_in(const Bench& bench, const Trial& trial, const std::string& function,
                     const std::string& deed) {
    const bool no_opener =
        function != "C_Initialize" && function != "C_Finalize" && function != "C_CloseSession";
    const unsigned long more = deed == "answer:0x101" ? 1 : 0;
    if (trial.crashed || trial.killed != deed.starts_with("kill")) return "the host crashed";
    if (trial.leaked) return "memory, a file or the module was not released";
    if (trial.stuck && no_opener) return "a session was left open";
    if (trial.first.spent_try || trial.second.spent_try) return "a PIN try was spent";
    if (trial.first.logins > bench.undisturbed.first.logins + more) return "the PIN was sent more often";
    return "";
}

void report(const Bench& bench, const Trial& trial, const std::string& what) {
    std::cerr << bench.plan.name << " " << what << "\n";
    for (const Objects* objects : {&trial.between, &trial.after})
        for (const std::string& object : *objects)
            std::cerr << (objects == &trial.after ? "  after " : "  between ") << object << "\n";
}

void sweep(const FlowPlan& plan, std::size_t every, Row& row) {
    Bench bench(plan);
    row[CALLS] = static_cast<unsigned>(bench.functions.size());
    for (std::size_t i = 0; i < bench.functions.size() * std::size(DEEDS); i += every) {
        const std::string &function = bench.functions[i / std::size(DEEDS)],
                          deed = DEEDS[i % std::size(DEEDS)];
        const std::string rule = "*:" + std::to_string(i / std::size(DEEDS) + 1) + ":" + deed;
        const std::size_t code = deed.find("answer:");
        const Trial trial = bench.run(
            rule, code == std::string::npos ? 0 : std::strtoul(deed.c_str() + code + 7, nullptr, 16));
        const Kind kind = kind_of(bench, trial, deed);
        const std::string wrong = wrong_in(bench, trial, function, deed);
        ++row[CASES], ++row[FIRST_KIND + kind];
        if (!trial.killed && trial.first.result != 0) ++row[FIRST_TOLD + trial.first.told];
        if (!trial.killed && trial.first.open) ++row[OPEN];
        if (kind != lost && wrong.empty()) continue;
        ++row[WRONG];
        report(bench, trial,
               function + " " + rule + ": " + (wrong.empty() ? "an outcome without a name" : wrong));
    }
}

void print_table(const std::string& heads, const std::vector<Row>& rows,
                 const std::vector<std::size_t>& columns) {
    std::cout << heads << "\n" << std::regex_replace(heads, std::regex("[^|]+"), "---") << "\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i][CASES] == 0) continue;
        std::cout << "| " << (i < flow_plans().size() ? flow_plans()[i].title : "**all**") << " |";
        for (const std::size_t column : columns)
            std::cout << " " << rows[i][column] << " |";
        std::cout << "\n";
    }
    std::cout << "\n";
}

std::vector<std::size_t> range(std::size_t first, std::size_t last) {
    std::vector<std::size_t> columns(last - first);
    std::iota(columns.begin(), columns.end(), first);
    return columns;
}

} // namespace

int main(int argc, char** argv) {
    const std::string wanted = argc > 1 ? argv[1] : "all";
    const std::size_t every = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
    ::setenv("ZVSIMCARD_KEYS", ZV_TEST_KEYS, 1);
    const std::size_t flows = flow_plans().size();
    auto* rows = static_cast<Row*>(::mmap(nullptr, (flows + 1) * sizeof(Row), PROT_READ | PROT_WRITE,
                                          MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const auto lane = [&](bool requests) {
        for (std::size_t i = 0; i < flows; ++i)
            if (const FlowPlan& plan = flow_plans()[i];
                has(plan.name, "request") == requests && (wanted == "all" || wanted == plan.name))
                sweep(plan, every, rows[i]);
        return 0;
    };
    // Requests go through files of fixed names: one process makes them all, beside another for the rest.
    int ended = 1;
    const pid_t other = ::fork();
    if (other == 0) ::_exit(lane(true));
    lane(false);
    ::waitpid(other, &ended, 0);
    for (std::size_t i = 0; i < flows * COLUMNS; ++i)
        rows[flows][i % COLUMNS] += rows[i / COLUMNS][i % COLUMNS];
    const std::vector<Row> all(rows, rows + flows + 1);
    print_table(KIND_HEADS, all, range(CALLS, FIRST_TOLD));
    print_table(TOLD_HEADS, all, range(FIRST_TOLD, WRONG));
    return ended == 0 && all[flows][CASES] != 0 && all[flows][WRONG] == 0 ? 0 : 1;
}
