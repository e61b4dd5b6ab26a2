#include "simcard/module/control.h"

#include "simcard/common/card_folder.h"
#include "simcard/common/environment.h"
#include "simcard/module/absurd.h"
#include "simcard/module/describe.h"
#include "simcard/module/state.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <numeric>
#include <thread>

namespace simcard {
namespace {

template <class D> const D* find(const std::vector<Deed>& deeds) {
    for (const Deed& deed : deeds)
        if (const D* found = std::get_if<D>(&deed)) return found;
    return nullptr;
}

[[noreturn]] void kill_this_process() {
    (void)std::raise(SIGKILL);
    std::abort();
}

// Rules that count over the whole run of a program need the module to stay when the program unloads it.
void stay_loaded() {
    Dl_info self{};
    if (::dladdr(reinterpret_cast<void*>(&stay_loaded), &self) != 0)
        ::dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

// The slot that a call goes to, the first one when it goes to none.
CK_SLOT_ID slot_of(const Call& call) {
    const auto& parameters = call.parameters();
    if (parameters.empty()) return 0;
    if (parameters[0].role == Role::slot) return call.arguments[0];
    const Session* session =
        parameters[0].role == Role::session ? state().session(call.arguments[0]) : nullptr;
    return session ? session->slot : 0;
}

void append_to(const std::filesystem::path& file, const std::string& line) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor < 0) return;
    if (::write(descriptor, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        std::cerr << "zvsimcard: cannot write " << file.string() << '\n';
    ::close(descriptor);
}

} // namespace

Control& control() {
    static Control only;
    return only;
}

std::mutex& gate() {
    static std::mutex only;
    return only;
}

std::optional<std::filesystem::path> folder_of_slot(CK_SLOT_ID slot) {
    if (state().hsm)
        return slot < state().slots.size() ? std::optional(state().slots[slot].card().folder) : std::nullopt;
    const auto cards = list_cards(cards_home());
    return slot < cards.size() ? std::optional(cards[slot].folder) : std::nullopt;
}

Control::Control() : key_file_(environment("ZVSIMCARD_KEYS")), trace_file_(environment("ZVSIMCARD_TRACE")) {
    const std::string text = environment("ZVSIMCARD_RULES");
    if (text.empty()) return;
    const int wrong = add_rules(text);
    environment_understood_ = wrong == 0;
    if (wrong != 0) std::cerr << "zvsimcard: rule " << wrong << " of ZVSIMCARD_RULES is not understood\n";
    stay_loaded();
}

int Control::add_rules(std::string_view text) {
    const auto parsed = parse_rules(text);
    rules_.insert(rules_.end(), parsed.rules.begin(), parsed.rules.end());
    return parsed.not_understood;
}

unsigned long Control::rules_left() const {
    const auto left =
        std::count_if(rules_.begin(), rules_.end(), [](const Rule& rule) { return !rule.has_acted(); });
    return static_cast<unsigned long>(left);
}

unsigned long Control::calls(std::optional<Function> function) const {
    if (function) return counts_[static_cast<std::size_t>(*function)];
    return std::accumulate(counts_.begin(), counts_.end(), 0UL);
}

void Control::reset() {
    rules_.clear();
    counts_.fill(0);
    recorded_.clear();
    recording_ = false;
    key_file_ = environment("ZVSIMCARD_KEYS");
}

Control::Due Control::due(Function function) {
    Due deeds;
    for (Rule& rule : rules_)
        if (rule.is_for(function)) deeds.push_back(rule.deed);
    return deeds;
}

void Control::record(const Call& call, const Rooms& rooms, std::optional<CK_RV> result) {
    if (!recording_ && trace_file_.empty()) return;
    const std::string line = describe(call, rooms, result) + "\n";
    if (recording_) recorded_ += line;
    if (!trace_file_.empty()) append_to(trace_file_, line);
}

void Control::act_before(const Due& deeds, const Call& call, const Rooms& rooms) {
    if (const auto* delay = find<deed::Delay>(deeds))
        std::this_thread::sleep_for(std::chrono::microseconds(delay->microseconds));
    if (const auto* out = find<deed::TakeOut>(deeds))
        if (const auto folder = folder_of_slot(out->slot.value_or(slot_of(call)))) take_out_card(*folder);
    if (const auto* back = find<deed::PutBack>(deeds))
        if (const auto folder = folder_of_slot(back->slot.value_or(slot_of(call)))) put_back_card(*folder);
    if (!find<deed::KillBefore>(deeds)) return;
    record(call, rooms, std::nullopt);
    kill_this_process();
}

CK_RV Control::around(const Call& call, const std::function<CK_RV()>& perform) {
    ++counts_[static_cast<std::size_t>(call.function)];
    const Due deeds = due(call.function);
    const Rooms rooms(call);
    act_before(deeds, call, rooms);
    const auto* answer = find<deed::Answer>(deeds);
    CK_RV result = answer ? answer->code : perform();
    if (const auto* kind = find<Absurdity>(deeds); kind && !answer && result == CKR_OK)
        falsify(*kind, call, rooms);
    if (const auto* after = find<deed::DoAndAnswer>(deeds)) result = after->code;
    record(call, rooms, result);
    if (find<deed::KillAfter>(deeds)) kill_this_process();
    return result;
}

} // namespace simcard
