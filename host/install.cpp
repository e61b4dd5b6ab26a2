#include "host/install.h"

#include "host/about_card.h"
#include "host/card_session.h"
#include "host/install_outcome.h"
#include "host/install_plan.h"
#include "host/library_card.h"
#include "host/library_text.h"
#include "host/new_file.h"
#include "host/numbered_steps.h"
#include "host/objects_removed.h"
#include "host/opened_plans.h"
#include "host/planned_changes.h"
#include "host/proof.h"
#include "host/refused_pin.h"
#include "host/remember.h"
#include "host/stored_back.h"
#include "host/suitability.h"
#include "zvRenew.h"

#include <algorithm>
#include <filesystem>

namespace zvhost {
namespace {

// Saves what is about to be replaced.
std::string save_backup(const InstallPlan& plan) {
    if (plan.backup.blocks.empty()) return plan.old ? plan.old->backup : std::string();
    return save(plan.backup);
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

} // namespace

class PlannedInstall::Work {
  public:
    Work(InstallWishes wishes, IssuedFiles files, OpenedCard card)
        : wishes_(std::move(wishes)), files_(std::move(files)), card_(std::move(card)) {}

    [[nodiscard]] OpenedCard& card() { return card_; }

    void plan() {
        const CardView& before = card_.view;
        const Inventory inventory = inventory_of(card_, wishes_.backup);
        remember_all(card_.facts(), inventory, before);
        if (const std::string id = stored_already(files_, inventory, before); !id.empty())
            throw because_stored(card_, files_, inventory, before, id);
        plan_ = plan_install(wishes_, files_, card_, inventory, before);
        seen_ = changes_of(plan_, card_.facts(), before);
        seen_.notices = notices_of(plan_);
    }
    [[nodiscard]] const Plan& seen() const { return seen_; }

    [[nodiscard]] Installed apply(Progress& shown) {
        NumberedSteps progress(shown, STEPS_OF_AN_INSTALLATION);
        progress.changing();
        const std::string backup = save_backup(plan_);
        for (const Sentence& notice : seen_.notices)
            progress.notice(notice);
        require_alone(card_);
        show_card_to_library(card_);
        progress.step(Step({"step-store", {{"pair", plan_.pair}}}));
        if (plan_.first) (void)remove_objects(card_, {*plan_.first});
        if (const int code = store(card_, plan_, plan_.removed.empty()); code != ZV_OK) {
            Error error = with_pin(card_.pin, library_stop("certificate-not-stored", code));
            undo_removal(progress);
            fail(backup, error);
        }
        progress.step(Step({"step-prove", {{"pair", plan_.pair}}}));
        const Proof proof = prove_pair(card_, plan_.pair, plan_.certificate, KeyPin::given);
        if (!proof.reason.empty()) fail(backup, because_unproved(proof));
        return installed_now(card_, plan_, backup, proof);
    }

  private:
    // Of keys that stayed, the certificate comes back.
    void undo_removal(Progress& progress) {
        if (plan_.removed.empty() && !plan_.first) return;
        for (const Change& change : seen_.changes)
            if (change.action == Action::remove && change.what == ObjectClass::certificate &&
                change.id == plan_.old->id && store_back(card_, plan_.old->der, change.id, change.label))
                progress.notice({"stored-back", {{"id", change.id}}});
    }
    [[noreturn]] void fail(const std::string& backup, const Error& error) {
        stop_install(card_, plan_, backup, error);
    }

    InstallWishes wishes_;
    IssuedFiles files_;
    OpenedCard card_;
    InstallPlan plan_;
    Plan seen_;
};

PlannedInstall::PlannedInstall(std::shared_ptr<Work> work) : work_(std::move(work)) {}

const Plan& PlannedInstall::plan() const {
    return work_->seen();
}

Installed PlannedInstall::apply(Progress& progress) {
    return about_card(work_->card(), [&] { return work_->apply(progress); });
}

PlannedInstall plan_install(const InstallWishes& wishes, const OpenCard& open) {
    IssuedFiles files = read_issued_files(wishes);
    // One that is there may be of a run that was broken off.
    if (std::error_code error; !wishes.backup.empty() && !std::filesystem::exists(wishes.backup, error))
        NewFile trial(wishes.backup);
    const auto work = std::make_shared<PlannedInstall::Work>(wishes, std::move(files), open());
    about_card(work->card(), [&] { work->plan(); });
    return PlannedInstall(work);
}

PlannedInstall plan_install(const InstallWishes& wishes, const CardChoice& choice, PinSource& pin) {
    return plan_install(wishes, [&] { return open_card(choice, pin, Use::changing); });
}

} // namespace zvhost
