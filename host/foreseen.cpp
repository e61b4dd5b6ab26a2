#include "host/foreseen.h"

#include "host/backup.h"
#include "host/error.h"
#include "host/install_plan.h"
#include "host/planned_changes.h"
#include "host/remember.h"
#include "host/request_plan.h"
#include "host/standing.h"
#include "zvConstants.h"

#include <utility>

namespace zvhost {
namespace {

Inventory shown_inventory(const CardStatus& status, const std::string& backup) {
    const CardList& list = status.list;
    Inventory inventory;
    for (const ListedCertificate& one : list.certificates)
        inventory.certificates.push_back(one.record);
    for (const ListedPair& one : list.pending)
        inventory.pending.push_back(one.pair);
    inventory.retired = list.retired;
    inventory.backups = backups_of(list.card.state ? list.card.state->serial : "", backup);
    inventory.own_pair = list.card.services_card;
    inventory.services_pending = status.services_pending;
    inventory.next = list.next;
    return inventory;
}

class ShownObjects {
  public:
    void add(CK_OBJECT_CLASS type, const std::string& id, const std::string& label = {}) {
        CardObject object;
        object.type = type;
        object.id = id;
        object.label = label;
        objects_.push_back(object);
    }
    void add_keys(const std::string& id) {
        if (view().find(CKO_PRIVATE_KEY, id) != nullptr) return;
        add(CKO_PUBLIC_KEY, id);
        add(CKO_PRIVATE_KEY, id);
    }
    [[nodiscard]] CardView view() const { return CardView(objects_); }

  private:
    std::vector<CardObject> objects_;
};

// The card as its objects must be, where they do not show: a certificate is taken to have its keys, a public key its
// private one.
CardView shown_view(const CardStatus& status, const Inventory& inventory, bool marked) {
    ShownObjects objects;
    for (const CertificateRecord& one : inventory.certificates) {
        objects.add(CKO_CERTIFICATE, one.id);
        objects.add_keys(one.id);
    }
    for (const PendingPair& one : inventory.pending)
        objects.add_keys(one.id);
    for (const RetiredPair& one : inventory.retired)
        objects.add_keys(one.id);
    for (const std::string& id : status.uncertified)
        objects.add_keys(id);
    if (marked) objects.add(CKO_DATA, {}, ZV_PENDING_MARKER);
    return objects.view();
}

class Foresight {
  public:
    Foresight(const CardStatus& status, RenewalWishes wishes, bool at_hand)
        : wishes_(std::move(wishes)), inventory_(shown_inventory(status, wishes_.backup)),
          standing_(standing_shown(wishes_, status, inventory_)),
          view_(shown_view(status, inventory_, services() && (at_hand || status.services_pending))),
          at_hand_(at_hand) {}

    [[nodiscard]] Plan plan() const {
        if (standing_.was_stored()) return rest(standing_.remembered.pair);
        if (at_hand_ && own_has_come()) return rest(ZV_OWN_PAIR);
        if (at_hand_ && (services() || !standing_.waiting.empty())) return installation();
        if (at_hand_ && !standing_.due) return rest(standing_.current);
        return standing_.requested ? waiting() : request();
    }

  private:
    [[nodiscard]] bool services() const { return wishes_.request.kind == Kind::services; }
    // It was stored, and what comes after that was not done.
    [[nodiscard]] bool own_has_come() const {
        const CertificateRecord* last = inventory_.current(Kind::services);
        return services() && last != nullptr && !standing_.due && standing_.remembered.pair == ZV_OWN_PAIR &&
               is_new_one(standing_.remembered, last->serial);
    }
    [[nodiscard]] std::string old_of(const std::string& pair) const {
        return wishes_.replace.empty() ? standing_.old_of(pair) : wishes_.replace;
    }

    [[nodiscard]] Plan request() const {
        RequestWishes wishes = wishes_.request;
        wishes.force = wishes.force || !standing_.waiting.empty();
        check_wishes(wishes);
        const RequestPlan request = plan_request(wishes, inventory_, view_, given_subject(wishes));
        Plan plan = changes_of(request, standing_.card, view_);
        plan.notices = notices_of(request);
        plan.notices.emplace_back("renewal-asks-authority", Values{});
        return plan;
    }
    [[nodiscard]] Plan waiting() const {
        Plan plan = unchanged(standing_.card, view_);
        plan.notices.emplace_back("renewal-waits",
                                  Values{{"pair", standing_.waiting}, {"file", wishes_.request.out}});
        return plan;
    }
    [[nodiscard]] Plan installation() const {
        InstallPlan install;
        install.kind = wishes_.request.kind;
        install.pair = services() ? ZV_OWN_PAIR : standing_.waiting;
        if (services() && wishes_.remove_old && !view_.certificates(ZV_OWN_PAIR).empty()) {
            install.old = {.id = ZV_OWN_PAIR, .der = {}, .on_card = true, .backup = {}};
            install.removed = {ZV_OWN_PAIR};
        }
        Plan plan = changes_of(install, standing_.card, view_);
        plan.notices = notices_of(install);
        if (const std::string old = old_of(install.pair); !services() && wishes_.remove_old && !old.empty())
            plan.notices.push_back(standing_.removes_later(old));
        return plan;
    }
    // As in a removal: the certificate, then its keys.
    [[nodiscard]] Plan rest(const std::string& pair) const {
        Plan plan = unchanged(standing_.card, view_);
        const std::string old = !services() && wishes_.remove_old ? old_of(pair) : "";
        for (const CardObject& object : view_.objects())
            if (services() ? object.type == CKO_DATA : !old.empty() && object.id == old)
                plan.changes.push_back(
                    removal_of(object, {services() ? "why-mark-removed" : "why-removal-wanted", {}}));
        return plan;
    }

    RenewalWishes wishes_;
    Inventory inventory_;
    Standing standing_;
    CardView view_;
    bool at_hand_;
};

// Of several under one identifier the first goes.
std::time_t end_of_first(const CardList& list, const std::string& id) {
    for (const ListedCertificate& one : list.certificates)
        if (one.record.id == id) return one.record.ends;
    return 0;
}

} // namespace

Plan foresee_renewal(const CardStatus& status, const RenewalWishes& wishes, bool certificate_at_hand) {
    try {
        Plan plan = Foresight(status, wishes, certificate_at_hand).plan();
        for (Change& change : plan.changes)
            if (change.action == Action::remove && change.what == ObjectClass::certificate)
                change.ends = end_of_first(status.list, change.id);
        plan.fingerprint.clear();
        return plan;
    } catch (Error& error) {
        error.tell_card(status.list.card);
        throw;
    }
}

} // namespace zvhost
