#include "host/remove.h"

#include "host/about_card.h"
#include "host/backup.h"
#include "host/card_view.h"
#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "host/inventory.h"
#include "host/new_file.h"
#include "host/objects_removed.h"
#include "host/planned_changes.h"
#include "host/public_key.h"
#include "zvConstants.h"

#include <algorithm>
#include <cctype>

namespace zvhost {
namespace {

using Doomed = std::vector<CardObject>;

Advice see_list() {
    return {"list", {"see-list", {}}};
}

// First what tells the holder that there is something, last what a later run goes by.
Doomed all_with(const CardView& view, const std::string& id) {
    Doomed found;
    for (const CK_OBJECT_CLASS type : {CKO_CERTIFICATE, CKO_PUBLIC_KEY, CKO_PRIVATE_KEY})
        for (const CardObject& object : view.objects())
            if (object.type == type && object.id == id) found.push_back(object);
    return found;
}

void refuse_own(const std::string& id) {
    if (id == ZV_OWN_PAIR) throw Error(Exit::refused, {"removal-of-own-pair", {{"id", id}}});
}

Doomed objects_of(const CardView& view, const std::string& id) {
    Doomed found = all_with(view, id);
    if (found.empty()) throw Error(Exit::refused, {"removal-of-nothing", {{"id", id}}}, see_list());
    refuse_doubled(view, {id});
    return found;
}

bool is_first_pair(const std::string& id) {
    return std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS), [&](const zv::KindRow& kind) {
        return kind.new_pair && zv::in_series(id, kind.series, zv::FIRST_DIGITS);
    });
}

// What waits for a certificate: keys that none belongs to, and that no request can have been made for are let alone.
Doomed waiting(const Inventory& /*inventory*/, const CardView& view, const RemovalWishes& wishes) {
    const std::string& id = wishes.id;
    refuse_own(id);
    Doomed found = objects_of(view, id);
    if (!view.certificates(id).empty())
        throw Error(Exit::refused, {"discard-of-certified", {{"id", id}}},
                    Advice{"list", {"discard-of-certified-advice", {{"id", id}}}});
    if (is_first_pair(id)) throw Error(Exit::refused, {"discard-of-no-waiting", {{"id", id}}}, see_list());
    return found;
}

bool is_key_of_another(const CardObject& object, const Bytes& key) {
    return object.type != CKO_CERTIFICATE && !key.empty() && !object.value.empty() && object.value != key;
}

// Under one identifier can be what does not belong together.
void refuse_strangers(const Doomed& objects, const std::string& id) {
    const auto certificates = std::count_if(
        objects.begin(), objects.end(), [](const CardObject& one) { return one.type == CKO_CERTIFICATE; });
    const Certificate certificate = certificate_from(without_padding(objects.front().value));
    const Bytes key = certificate ? modulus_of(*certificate) : Bytes();
    const bool strange = std::any_of(objects.begin(), objects.end(),
                                     [&](const CardObject& one) { return is_key_of_another(one, key); });
    if (certificates > 1 || !certificate || strange)
        throw Error(Exit::refused, {"removal-of-strangers", {{"id", id}}});
}

void refuse_last(const Inventory& inventory, const RemovalWishes& wishes) {
    if (wishes.last) return;
    for (const zv::KindRow& kind : zv::KINDS)
        if (const CertificateRecord* current = inventory.current(kind.id);
            current != nullptr && current->id == wishes.id)
            throw Error(Exit::refused, {"removal-of-last", {{"id", wishes.id}, {"kind", kind.id}}},
                        Advice{"last", {"removal-of-last-advice", {}}});
}

Doomed certified(const Inventory& inventory, const CardView& view, const RemovalWishes& wishes) {
    const std::string& id = wishes.id;
    refuse_own(id);
    Doomed found = objects_of(view, id);
    const auto retired = [&](const RetiredPair& pair) { return pair.id == id; };
    if (std::any_of(inventory.retired.begin(), inventory.retired.end(), retired)) return found;
    if (view.certificates(id).empty())
        throw Error(Exit::refused, {"removal-of-waiting", {{"id", id}}},
                    Advice{"pending-discard", {"removal-of-waiting-advice", {{"id", id}}}, {{"pair", id}}});
    refuse_strangers(found, id);
    refuse_last(inventory, wishes);
    return found;
}

std::string usual_file(const Doomed& objects, const std::string& id) {
    const CardObject& first = objects.front();
    std::string name = id;
    if (first.type == CKO_CERTIFICATE)
        name += "-" + serial_of(without_padding(first.value)) + ".pem";
    else
        name += "-" + short_digest(first.value) + ".pem";
    const auto odd = [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c != '.'; };
    std::replace_if(name.begin(), name.end(), odd, '_');
    return name;
}

// The private key cannot be saved; the rest must be.
Backup backup_of(const Doomed& objects, const RemovalWishes& wishes, const std::string& card) {
    Backup backup;
    backup.file = wishes.backup.empty() ? usual_file(objects, wishes.id) : wishes.backup;
    backup.heading = backup_heading(card, wishes.id);
    for (const CardObject& object : objects) {
        if (object.type == CKO_PRIVATE_KEY) continue;
        const bool certificate = object.type == CKO_CERTIFICATE;
        const Bytes der =
            certificate ? without_padding(object.value) : public_key_of(object.value, object.exponent);
        if (der.empty()) throw Error(Exit::refused, {"removal-unsaved", {{"id", wishes.id}}});
        backup.add(certificate ? "CERTIFICATE" : "PUBLIC KEY", der);
    }
    return backup;
}

} // namespace

class PlannedRemoval::Work {
  public:
    Work(RemovalWishes wishes, OpenedCard card) : wishes_(std::move(wishes)), card_(std::move(card)) {}

    using Choose = Doomed (*)(const Inventory&, const CardView&, const RemovalWishes&);

    void plan(Choose choose, const Sentence& why) {
        const CardView& view = card_.view;
        objects_ = choose(inventory_of(card_, wishes_.backup), view, wishes_);
        backup_ = backup_of(objects_, wishes_, card_.state.serial);
        seen_.card = card_.facts();
        seen_.logins = LOGINS;
        for (const CardObject& object : objects_)
            seen_.changes.push_back(removal_of(object, why));
        seal(seen_, view);
    }
    [[nodiscard]] OpenedCard& card() { return card_; }
    [[nodiscard]] const Plan& seen() const { return seen_; }

    [[nodiscard]] Removed apply(Progress& progress) {
        progress.changing();
        const std::string backup = save(backup_);
        require_alone(card_);
        progress.step(Step({"step-remove", {{"id", wishes_.id}}}));
        const CardNow now = remove_objects(card_, objects_);
        if (now.view && now.view->has(wishes_.id))
            throw Error(Exit::failed, {"removal-not-whole", {{"id", wishes_.id}}});
        return {card_.facts(), wishes_.id, backup, now.contents};
    }

  private:
    static constexpr int LOGINS = 1; // to remove, and to look

    RemovalWishes wishes_;
    OpenedCard card_;
    Doomed objects_;
    Backup backup_;
    Plan seen_;
};

PlannedRemoval::PlannedRemoval(std::shared_ptr<Work> work) : work_(std::move(work)) {}

const Plan& PlannedRemoval::plan() const {
    return work_->seen();
}

Removed PlannedRemoval::apply(Progress& progress) {
    return about_card(work_->card(), [&] { return work_->apply(progress); });
}

namespace {

PlannedRemoval planned(const RemovalWishes& wishes, const CardChoice& choice, PinSource& pin,
                       PlannedRemoval::Work::Choose choose, const Sentence& why) {
    refuse_own(wishes.id);
    const auto work = std::make_shared<PlannedRemoval::Work>(wishes, open_card(choice, pin, Use::changing));
    about_card(work->card(), [&] { work->plan(choose, why); });
    return PlannedRemoval(work);
}

} // namespace

PlannedRemoval plan_removal(const RemovalWishes& wishes, const CardChoice& choice, PinSource& pin) {
    return planned(wishes, choice, pin, certified, {"why-removal-wanted", {}});
}

PlannedRemoval plan_discard(const RemovalWishes& wishes, const CardChoice& choice, PinSource& pin) {
    return planned(wishes, choice, pin, waiting, {"why-pair-discarded", {{"pair", wishes.id}}});
}

} // namespace zvhost
