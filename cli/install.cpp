#include "cli/about_card.h"
#include "cli/commands.h"
#include "cli/install_plan.h"
#include "cli/installed.h"
#include "cli/library_text.h"
#include "cli/new_file.h"
#include "cli/note.h"
#include "cli/proof.h"
#include "cli/signals.h"
#include "cli/suitability.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>

namespace cli {
namespace {

// Saves what is about to be replaced. A file that holds all of it already will do.
std::string save_backup(const InstallPlan& plan) {
    if (plan.backup.blocks.empty()) return plan.old ? plan.old->backup : std::string();
    const std::string& file = plan.backup.file;
    if (const auto there = read_backup(file); there && there->covers(plan.backup)) return file;
    try {
        NewFile(file).save(plan.backup.text());
    } catch (Stop& stop) {
        if (stop.exit == Exit::refused)
            stop.advice = {
                {"other-file", "Give the backup another name with --backup FILE.", {{"file", file}}}};
        throw;
    }
    return file;
}

void say_what_comes(const InstallPlan& plan) {
    if (const std::string issuer = new_issuer(plan); !issuer.empty()) note(issuer);
    if (plan.removed.empty()) return;
    if (plan.kind == Kind::services)
        return note(fmt::format("Removing the old certificate {} from the card; its keys stay.", plan.pair));
    note(fmt::format("Removing {} from the card, keys included.", plan.removed.front()));
    if (plan.removed.size() > 1)
        note(fmt::format("The authority's certificate \"{}\" goes too: nothing puts it back.",
                         plan.removed[1]));
}

int store(OpenedCard& card, const InstallPlan& plan, bool keep) {
    const auto save = plan.kind == Kind::signature ? rinnovo_Card_saveCertPRA : rinnovo_Card_saveCertAUT;
    // Where nothing is removed the label only has to be one that is not empty.
    std::string label = plan.removed.empty() ? plan.pair : plan.old->id;
    label.resize(std::max(label.size(), std::size_t{ZV_LABEL_SIZE}), '\0');
    std::string pair = plan.pair;
    std::string text = base64_of(plan.certificate);
    forget_library_texts();
    return save(card.pin.text(), label.data(), pair.data(), text.data(), keep);
}

Advice say_backup(const std::string& backup) {
    return {"backup", fmt::format("A copy of the old certificate: {}", backup), {{"file", backup}}};
}

// What the card may have refused: it does not say why.
void advise_on_room(std::vector<Advice>& advice, const InstallPlan& plan) {
    if (plan.kind == Kind::services && plan.removed.empty() && plan.old && plan.old->on_card)
        advice.push_back({"remove-old", "A card that takes one certificate of an identifier only needs "
                                        "--remove-old beside that."});
    else if (plan.removed.empty() && plan.old && plan.old->on_card)
        advice.push_back(
            {"remove-old",
             fmt::format("If the card is full, the old certificate makes room: give --remove-old "
                         "--replace {} beside that.",
                         plan.old->id),
             {{"replace", plan.old->id}}});
    else if (plan.kind != Kind::services)
        advice.push_back({"make-room",
                          "If the card is full, remove something from it with the card's own software "
                          "first."});
}

std::vector<Advice> advice_after_failure(const InstallPlan& plan, const CardNow& now) {
    if (!now.view) return {{"repeat", "Put the card in the reader and run the same command again."}};
    if (now.view->certificate(plan.pair, plan.certificate) != nullptr)
        return {{"repeat", "To try the new key once more, run the same command again."}};
    if (now.view->find(CKO_PRIVATE_KEY, plan.pair) == nullptr)
        return {{"list", "See what is on the card with: zvrenew list"}};
    const char* keys = plan.kind == Kind::services
                           ? "The keys {} are as they were: run the same command again."
                           : "The pair {} still waits for the certificate: run the "
                             "same command again.";
    std::vector<Advice> advice{{"repeat", fmt::format(fmt::runtime(keys), plan.pair), {{"pair", plan.pair}}}};
    advise_on_room(advice, plan);
    return advice;
}

[[noreturn]] void stop_failed(OpenedCard& card, const InstallPlan& plan, const std::string& backup,
                              Stop stop) {
    const CardNow now = card_now(card);
    stop.card = now.contents;
    if (stop.advice.empty() || stop.advice.front().key != "signature-pin")
        for (Advice& advice : advice_after_failure(plan, now))
            stop.advice.push_back(std::move(advice));
    if (!backup.empty()) stop.advice.push_back(say_backup(backup));
    throw stop;
}

// Of a services card only the certificate goes, whose place the new one takes.
bool is_left(const InstallPlan& plan, const CardView& view, const std::string& id) {
    return plan.kind == Kind::services ? view.certificates(id).size() > 1 : view.has(id);
}

Stop because_left(const std::vector<std::string>& left, const InstallPlan& plan, const CardNow& now,
                  const std::string& backup) {
    const std::string what = plan.kind == Kind::services
                                 ? fmt::format("another certificate {} is still there", plan.pair)
                                 : fmt::format("{} could not be removed whole", fmt::join(left, ", "));
    Stop stop(Exit::failed,
              fmt::format("The new certificate is stored and verified, as {}, but {}.", plan.pair, what),
              Advice{"card-software", "Remove it with the card's own software.", {{"remove", left}}});
    stop.advice.push_back(say_backup(backup));
    stop.card = now.contents;
    stop.logged = true;
    return stop;
}

// The library says nothing of an object that would not go.
void refuse_leftovers(const InstallPlan& plan, const CardNow& now, const std::string& backup) {
    if (!now.view) return;
    std::vector<std::string> left = plan.removed;
    std::erase_if(left, [&](const std::string& id) { return !is_left(plan, *now.view, id); });
    if (!left.empty()) throw because_left(left, plan, now, backup);
}

Report report_on(OpenedCard& card, const InstallPlan& plan, const std::string& backup, const Proof& proof) {
    const CardNow now = card_now(card);
    refuse_leftovers(plan, now, backup);
    const bool marked = plan.kind == Kind::services && now.view && now.view->marked_pending();
    const Installed installed{card.facts(), plan, backup, proof, now.contents, marked};
    Report report;
    report.json = as_json(installed);
    report.text = in_words(installed);
    report.advice = advice_on(installed);
    report.unsaid = [now](Stop& stop) { stop.card = now.contents; };
    return report;
}

// What a run before this one may have left, when it was broken off after installing.
Stop because_stored(OpenedCard& card, const IssuedFiles& files, const Inventory& inventory,
                    const CardView& view, const std::string& id) {
    Proof proof;
    for (const Certificate& certificate : files.certificates)
        if (view.certificate(id, certificate.der()) != nullptr)
            proof = prove_pair(card, id, certificate.der(), KeyPin::kept);
    if (!proof.reason.empty())
        return {Exit::failed,
                fmt::format("The certificate is on the card already, as {}, but {}", id, proof.reason)};
    Stop stop(Exit::refused,
              fmt::format("The certificate is on the card already, as {}: {}.", id,
                          proof.signed_with
                              ? "a signature of its key verifies with it"
                              : "its key, which wants a PIN before each signature, is the right one"));
    stop.found = AlreadyStored{id, proof.signed_with};
    std::vector<std::string> left;
    for (const RetiredPair& pair : inventory.retired)
        left.push_back(pair.id);
    if (!left.empty()) stop.advice.push_back(say_left(left));
    if (id == ZV_OWN_PAIR && view.marked_pending()) stop.advice.push_back(say_mark_left());
    return stop;
}

Stop because_unproved(const Proof& proof) {
    Stop stop(Exit::failed, fmt::format("The certificate was stored, but {}", proof.reason));
    if (proof.advice) stop.advice.push_back(*proof.advice);
    return stop;
}

Report install_on(OpenedCard& card, const InstallOptions& options, const IssuedFiles& files) {
    const CardView before = view_card(card);
    const Inventory inventory = read_inventory(card, before, options.backup);
    if (const std::string id = stored_already(files, inventory, before); !id.empty())
        throw because_stored(card, files, inventory, before, id);
    const InstallPlan plan = plan_install(options, files, card, inventory, before);
    hold_signals();
    const std::string backup = save_backup(plan);
    say_what_comes(plan);
    require_alone(card);
    if (const int code = store(card, plan, plan.removed.empty()); code != ZV_OK)
        stop_failed(card, plan, backup, library_stop("The certificate could not be stored", code));
    const Proof proof = prove_pair(card, plan.pair, plan.certificate, KeyPin::given);
    if (!proof.reason.empty()) stop_failed(card, plan, backup, because_unproved(proof));
    return report_on(card, plan, backup, proof);
}

} // namespace

Report run_install(const InstallOptions& options) {
    const IssuedFiles files = read_issued_files(options);
    // One that is there may be of a run that was broken off.
    if (std::error_code error; !options.backup.empty() && !std::filesystem::exists(options.backup, error))
        NewFile trial(options.backup);
    OpenedCard card = open_card(options, Use::changing);
    return about_card(card, [&] { return install_on(card, options, files); });
}

} // namespace cli
