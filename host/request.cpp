#include "host/request.h"

#include "host/about_card.h"
#include "host/advice.h"
#include "host/card_session.h"
#include "host/journal.h"
#include "host/library_card.h"
#include "host/library_text.h"
#include "host/new_file.h"
#include "host/opened_plans.h"
#include "host/planned_changes.h"
#include "host/read_file.h"
#include "host/refused_pin.h"
#include "host/remember.h"
#include "host/request_files.h"
#include "host/request_plan.h"
#include "host/signed_request.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace zvhost {
namespace {

// The card could not be read, or gave numbers or a signature that are none: it would do so again.
bool key_failed() {
    const std::string_view said = szSockMsg;
    return said.starts_with("Errore nella lettura del modulo/esponente") ||
           said.starts_with("Errore nella operazione di firma");
}

// Another crypto library may mean something else by these codes.
bool signer_failed(const RequestPlan& plan, const Error& stop) {
    return plan.signer_wants_pin && (stop.code == ZVC_ERR_KEY_PIN || stop.code == ZVC_ERR_PIN_UNSENT);
}

Advice advice_on(const RequestPlan& plan, const CardNow& now, const Error& stop) {
    const Values pair = {{"pair", plan.pair}};
    if (now.view && now.view->wants_pin(plan.pair)) return leave_to_card_software(plan.pair);
    if (signer_failed(plan, stop)) return give_key_the_pin(plan.old.id);
    if (key_failed() && plan.old.kind == Kind::services)
        return {"own-keys", {"own-keys-of-no-use", {}}, pair};
    if (!now.is_pending(plan.pair)) return {"repeat", {"repeat-request", {}}};
    if (key_failed())
        return {"new-pair", {plan.reuse ? "replace-waiting-pair" : "replace-new-pair", pair}, pair};
    if (plan.discard && now.view->modulus(plan.pair) == plan.pending_key)
        return {"repeat", {"repeat-discarding", pair}, pair};
    if (plan.discard) return {"without-new-pair", {"repeat-without-new-pair", pair}, pair};
    return {"repeat-with-pair", {"repeat-with-pair", pair}, pair};
}

void explain(OpenedCard& card, const RequestPlan& plan, Error& stop) {
    const CardNow now = card_now(card);
    stop.card = now.contents;
    // A full card stays full.
    if (stop.advice.empty()) stop.advice.push_back(advice_on(plan, now, stop));
}

[[noreturn]] void stop_failed(OpenedCard& card, const RequestPlan& plan, Error stop) {
    explain(card, plan, stop);
    throw stop;
}

std::string ask_library(OpenedCard& card, const RequestPlan& plan, Kind kind) {
    const auto create =
        kind == Kind::signature ? rinnovo_Card_createCertRequestPRA : rinnovo_Card_createCertRequestAUT;
    std::vector<char> result(ZV_REQUEST_SIZE, '\0');
    std::string key = plan.old.id;
    forget_library_texts();
    const int code = create(result.data(), plan.pair.c_str(), card.pin.text(), key.data(),
                            plan.subject.oid_form().c_str(), plan.discard);
    if (code != ZV_OK) stop_failed(card, plan, with_pin(card.pin, library_stop("request-not-made", code)));
    return {result.data(), strnlen(result.data(), result.size())};
}

// The library's success alone does not say that there is a request, nor for which pair.
void check_request(OpenedCard& card, const RequestPlan& plan, const std::string& request) {
    if (request.size() == ZV_REQUEST_SIZE - 1) stop_failed(card, plan, {Exit::failed, {"request-cut", {}}});
    const Bytes key = modulus_of_request(request);
    if (key.empty()) stop_failed(card, plan, {Exit::failed, {"no-request-made", {}}});
    if (plan.discard && key == plan.pending_key)
        stop_failed(card, plan, {Exit::failed, {"pair-not-discarded", {}}});
    if (plan.reuse && key != plan.pending_key)
        stop_failed(card, plan, {Exit::failed, {"request-of-other-pair", {{"pair", plan.pair}}}});
}

// The library does not say whether the card took the mark.
void check_mark(OpenedCard& card, Progress& progress) {
    const CardNow now = card_now(card);
    if (!now.view || !now.view->marked_pending()) progress.notice({"no-mark", {}});
}

// Where the request goes.
struct Output {
    std::optional<NewFile> file; // none for standard output, or when a request is there already
    Bytes earlier;               // the key of that request
};

// A request whose file was made before the program ended, or was ended, is done when it is asked for again.
Output prepare_output(const RequestWishes& wishes) {
    Output output;
    if (wishes.out.empty()) return output;
    if (std::filesystem::is_regular_file(wishes.out) && wishes.subject.empty() && !wishes.new_pair)
        output.earlier = modulus_of_request(read_file(wishes.out, "file"));
    if (output.earlier.empty()) output.file.emplace(wishes.out);
    return output;
}

bool is_done(const Output& output, const RequestPlan& plan, const CardView& view) {
    const bool under_way = plan.old.kind != Kind::services || view.marked_pending();
    return plan.reuse && under_way && output.earlier == plan.pending_key;
}

Advice next_step(const MadeRequest& made) {
    const bool remove_old = made.kind == Kind::services;
    const Value file = made.file.empty() ? Value(std::vector{Sentence{"the-request", {}}}) : Value(made.file);
    return {"install",
            {remove_old ? "send-request-services" : "send-request", {{"file", file}}},
            {{"kind", kind_name(made.kind)},
             {"pair", made.pair},
             {"request", made.file.empty() ? Value() : Value(made.file)},
             {"remove_old", remove_old}}};
}

// A discarding that was broken off leaves one key of the two, which no request and no installation uses.
Advice say_left_keys(const std::vector<std::string>& left) {
    return {"card-software", {"left-of-pair", {{"left", left}}}, {{"remove", left}}};
}

} // namespace

// Lives as long as the last that tells of it: the card may have to be read once more.
class PlannedRequest::Work : public std::enable_shared_from_this<Work> {
  public:
    Work(RequestWishes wishes, Output output, Lock files, OpenedCard card)
        : wishes_(std::move(wishes)), output_(std::move(output)), files_(std::move(files)),
          card_(std::move(card)) {}

    void plan(std::optional<DistinguishedName> subject) {
        const CardView& view = card_.view;
        const Inventory inventory = inventory_of(card_);
        remember_all(card_.facts(), inventory, view);
        plan_ = plan_request(wishes_, inventory, view, std::move(subject));
        if (!output_.earlier.empty() && !is_done(output_, plan_, view)) NewFile refused(wishes_.out);
        seen_ = seen(view);
    }
    [[nodiscard]] const Plan& seen() const { return seen_; }
    [[nodiscard]] const std::string& pair() const { return plan_.pair; }
    [[nodiscard]] OpenedCard& card() { return card_; }

    [[nodiscard]] MadeRequest apply(Progress& progress) {
        if (!output_.earlier.empty()) return remembered(told({}));
        if (output_.file) NewFile still_free(wishes_.out);
        progress.changing();
        for (const Sentence& notice : seen_.notices)
            progress.notice(notice);
        if (!plan_.reuse) progress.notice({"generating", {}});
        require_alone(card_);
        show_card_to_library(card_);
        progress.step(
            Step({plan_.reuse ? "step-request" : "step-keys", {{"pair", plan_.pair}}}, usual_time()));
        const auto begun = std::chrono::steady_clock::now();
        const std::string text = ask_library(card_, plan_, wishes_.kind);
        if (!plan_.reuse && wishes_.kind != Kind::services) remember_time(begun);
        check_request(card_, plan_, text);
        if (wishes_.kind == Kind::services) check_mark(card_, progress);
        save(text);
        MadeRequest made = remembered(told(output_.file ? "" : text));
        made.unsaid = [self = shared_from_this()](Error& error) { explain(self->card_, self->plan_, error); };
        return made;
    }

  private:
    [[nodiscard]] std::optional<std::chrono::milliseconds> usual_time() const {
        return plan_.reuse ? std::nullopt : Journal().card(card_.state.serial).key_pair_took;
    }
    void remember_time(std::chrono::steady_clock::time_point begun) const {
        const auto took = std::chrono::steady_clock::now() - begun;
        (void)remember_key_pair_took(card_.state.serial,
                                     std::chrono::duration_cast<std::chrono::milliseconds>(took));
    }
    [[nodiscard]] Plan seen(const CardView& view) const {
        if (!output_.earlier.empty()) return unchanged(card_.facts(), view);
        Plan plan = changes_of(plan_, card_.facts(), view);
        plan.notices = notices_of(plan_);
        return plan;
    }
    void save(const std::string& text) {
        try {
            if (output_.file) output_.file->save(text);
        } catch (const Error& error) {
            stop_failed(card_, plan_, error);
        }
    }
    [[nodiscard]] MadeRequest remembered(MadeRequest made) const {
        std::error_code none;
        const std::string file = made.file.empty() ? "" : std::filesystem::absolute(made.file, none).string();
        remember_request(made.card, {made.kind, made.pair, RENEWAL_REQUESTED, file, made.renews,
                                     plan_.old.serial, std::time(nullptr)});
        return made;
    }
    [[nodiscard]] MadeRequest told(const std::string& text) const {
        MadeRequest made{card_.facts(),
                         wishes_.kind,
                         plan_.old.id,
                         plan_.pair,
                         plan_.reuse,
                         plan_.subject,
                         wishes_.out,
                         !output_.earlier.empty(),
                         text,
                         {},
                         {}};
        made.advice.push_back(next_step(made));
        if (!plan_.left.empty()) made.advice.push_back(say_left_keys(plan_.left));
        return made;
    }

    RequestWishes wishes_;
    Output output_;
    Lock files_;
    OpenedCard card_;
    RequestPlan plan_;
    Plan seen_;
};

PlannedRequest::PlannedRequest(std::shared_ptr<Work> work) : work_(std::move(work)) {}

const std::string& PlannedRequest::pair() const {
    return work_->pair();
}

const Plan& PlannedRequest::plan() const {
    return work_->seen();
}

MadeRequest PlannedRequest::apply(Progress& progress) {
    return about_card(work_->card(), [&] { return work_->apply(progress); });
}

PlannedRequest plan_request(const RequestWishes& wishes, const OpenCard& open) {
    check_wishes(wishes);
    std::optional<DistinguishedName> subject = given_subject(wishes);
    Output output = prepare_output(wishes);
    Lock files = hold_request_files();
    const auto work =
        std::make_shared<PlannedRequest::Work>(wishes, std::move(output), std::move(files), open());
    about_card(work->card(), [&] { work->plan(std::move(subject)); });
    return PlannedRequest(work);
}

PlannedRequest plan_request(const RequestWishes& wishes, const CardChoice& choice, PinSource& pin) {
    return plan_request(wishes, [&] { return open_card(choice, pin, Use::changing); });
}

} // namespace zvhost
