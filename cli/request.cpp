#include "cli/about_card.h"
#include "cli/advice.h"
#include "cli/commands.h"
#include "cli/library_text.h"
#include "cli/log_folder.h"
#include "cli/made_request.h"
#include "cli/new_file.h"
#include "cli/note.h"
#include "cli/read_file.h"
#include "cli/request_files.h"
#include "cli/request_plan.h"
#include "cli/signals.h"
#include "cli/signed_request.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace cli {
namespace {

void say_what_comes(const RequestPlan& plan) {
    if (plan.old.ends < std::time(nullptr))
        note(fmt::format(
            "The certificate {} has expired: the authority may not take a request signed with it.",
            plan.old.id));
    if (plan.old.kind == Kind::services) {
        note(fmt::format("The card's own keys {} stay and sign the request.", plan.pair));
        return;
    }
    if (plan.signer_wants_pin)
        note(fmt::format(
            "The key {} signs the request and wants the PIN for that: it is given the card's. If it "
            "has a PIN of its own, that fails and costs one of its tries.",
            plan.old.id));
    if (plan.reuse) {
        note(fmt::format("The pair {} that waits on the card is used.", plan.pair));
        return;
    }
    if (plan.discard)
        note(
            fmt::format("The pair {} that waits on the card is discarded: a certificate for it can no longer "
                        "be installed.",
                        plan.pair));
    if (!plan.wants_pin.empty())
        note(fmt::format(
            "The key {} wants the PIN before each signature. If the card makes the new pair {} so, too, "
            "that pair cannot sign its request and stays on the card without one.",
            plan.wants_pin, plan.pair));
    note("The card is generating a key pair. This can take a minute; leave the card in the reader.");
}

// The card could not be read, or gave numbers or a signature that are none: it would do so again.
bool key_failed() {
    const std::string_view said = szSockMsg;
    return said.starts_with("Errore nella lettura del modulo/esponente") ||
           said.starts_with("Errore nella operazione di firma");
}

// Another crypto library may mean something else by these codes.
bool signer_failed(const RequestPlan& plan, const Stop& stop) {
    return plan.signer_wants_pin && (stop.code == ZVC_ERR_KEY_PIN || stop.code == ZVC_ERR_PIN_UNSENT);
}

Advice advice_on(const RequestPlan& plan, const CardNow& now, const Stop& stop) {
    const Values pair = {{"pair", plan.pair}};
    if (now.view && now.view->wants_pin(plan.pair)) return leave_to_card_software(plan.pair);
    if (signer_failed(plan, stop)) return give_key_the_pin(plan.old.id);
    if (key_failed() && plan.old.kind == Kind::services)
        return {
            "own-keys",
            "Repeat the request with the card in the reader. If that fails in the same way, the card's own "
            "keys are of no use for a request: its issuer has to help.",
            pair};
    if (!now.is_pending(plan.pair))
        return {"repeat", "See that the card is in the reader and repeat the request."};
    if (key_failed())
        return {"new-pair",
                fmt::format("The card made no request of the pair {}. Make another pair: repeat the request "
                            "with --new-pair, which discards {}{}.",
                            plan.pair, plan.pair,
                            plan.reuse ? " (a certificate for it can then no longer be installed)" : ""),
                pair};
    if (plan.discard && now.view->modulus(plan.pair) == plan.pending_key)
        return {"repeat", fmt::format("The pair {} is not discarded yet: repeat the request.", plan.pair),
                pair};
    if (plan.discard)
        return {"without-new-pair",
                fmt::format("Repeat the request without --new-pair: it will use the pair {}.", plan.pair),
                pair};
    return {"repeat-with-pair",
            fmt::format("Repeat the request: it will use the pair {} that is on the card.", plan.pair), pair};
}

void explain(OpenedCard& card, const RequestPlan& plan, Stop& stop) {
    const CardNow now = card_now(card);
    stop.card = now.contents;
    // A full card stays full.
    if (stop.advice.empty()) stop.advice.push_back(advice_on(plan, now, stop));
}

[[noreturn]] void stop_failed(OpenedCard& card, const RequestPlan& plan, Stop stop) {
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
    if (code != ZV_OK) stop_failed(card, plan, library_stop("The request could not be made", code));
    return {result.data(), strnlen(result.data(), result.size())};
}

// The library's success alone does not say that there is a request, nor for which pair.
void check_request(OpenedCard& card, const RequestPlan& plan, const std::string& request) {
    if (request.size() == ZV_REQUEST_SIZE - 1)
        stop_failed(card, plan, {Exit::failed, "The request came out too long and was cut."});
    const Bytes key = modulus_of_request(request);
    if (key.empty()) stop_failed(card, plan, {Exit::failed, "What came out is no request."});
    if (plan.discard && key == plan.pending_key)
        stop_failed(card, plan, {Exit::failed, "The waiting pair could not be discarded."});
    if (plan.reuse && key != plan.pending_key)
        stop_failed(card, plan,
                    {Exit::failed, fmt::format("The request came out for another pair than {}.", plan.pair)});
}

// The library does not say whether the card took the mark.
void check_mark(OpenedCard& card) {
    const CardNow now = card_now(card);
    if (!now.view || !now.view->marked_pending())
        note("The card bears no mark of the request: the list will not show that it is under way.");
}

// Where the request goes.
struct Output {
    std::optional<NewFile> file; // none for standard output, or when a request is there already
    Bytes earlier;               // the key of that request
};

// A request whose file was made before the program ended, or was ended, is done when it is asked for again.
Output prepare_output(const RequestOptions& options) {
    Output output;
    if (options.out.empty()) return output;
    if (std::filesystem::is_regular_file(options.out) && options.subject.empty() && !options.new_pair)
        output.earlier = modulus_of_request(read_file(options.out, "The file"));
    if (output.earlier.empty()) output.file.emplace(options.out);
    return output;
}

bool is_done(const Output& output, const RequestPlan& plan, const CardView& view) {
    const bool under_way = plan.old.kind != Kind::services || view.marked_pending();
    return plan.reuse && under_way && output.earlier == plan.pending_key;
}

Report report_on(const MadeRequest& made) {
    Report report;
    report.json = as_json(made);
    report.text = in_words(made);
    report.payload = made.text;
    report.advice = advice_on(made);
    report.logged = true;
    return report;
}

using SharedCard = std::shared_ptr<OpenedCard>;

Report make_request(const SharedCard& card, const RequestPlan& plan, const RequestOptions& options,
                    const Output& output) {
    if (output.file) NewFile still_free(options.out);
    hold_signals();
    say_what_comes(plan);
    require_alone(*card);
    const std::string text = ask_library(*card, plan, options.kind);
    check_request(*card, plan, text);
    if (options.kind == Kind::services) check_mark(*card);
    try {
        if (output.file) output.file->save(text);
    } catch (const Stop& stop) {
        stop_failed(*card, plan, stop);
    }
    Report report =
        report_on({card->facts(), plan, options.kind, options.out, "Saved as", output.file ? "" : text});
    report.unsaid = [card, plan](Stop& stop) { explain(*card, plan, stop); };
    return report;
}

Report request_on(const SharedCard& card, const RequestOptions& options, const Output& output,
                  std::optional<DistinguishedName> subject) {
    const CardView view = view_card(*card);
    const Inventory inventory = read_inventory(*card, view);
    const RequestPlan plan = plan_request(options, inventory, view, std::move(subject));
    if (output.earlier.empty()) return make_request(card, plan, options, output);
    if (!is_done(output, plan, view)) NewFile refused(options.out);
    return report_on({card->facts(), plan, options.kind, options.out, "It is there already, as", {}});
}

} // namespace

Report run_request(const RequestOptions& options) {
    check_options(options);
    std::optional<DistinguishedName> subject = given_subject(options);
    const Output output = prepare_output(options);
    const Lock files = hold_request_files();
    const auto card = std::make_shared<OpenedCard>(open_card(options, Use::changing));
    return about_card(*card, [&] { return request_on(card, options, output, std::move(subject)); });
}

} // namespace cli
