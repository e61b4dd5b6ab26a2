#include "host/renew.h"

#include "host/card_view.h"
#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "host/inventory.h"
#include "host/journal.h"
#include "host/kept_pin.h"
#include "host/objects_removed.h"
#include "host/planned_changes.h"
#include "host/read_file.h"
#include "host/remove.h"
#include "host/signed_request.h"
#include "zvConstants.h"

#include <algorithm>
#include <filesystem>

namespace zvhost {
namespace {

constexpr const char* STORED = "stored"; // the new certificate is on the card, and was proved

bool is_a_file(const std::string& file) {
    std::error_code none;
    return !file.empty() && std::filesystem::is_regular_file(file, none);
}

// A certificate of the card that may have to go.
struct Candidate {
    std::string id;
    std::string serial;
    Bytes der;
};

// Where a renewal is, as the card and the files say it.
struct Standing {
    CardFacts card;
    OnCard now;
    std::string waiting;              // identifier of the pair that waits; empty for none
    bool requested = false;           // the request's file is there, and is that pair's
    Bytes signer;                     // the certificate that signed the request of that file
    std::vector<Candidate> certified; // of the kind, with their keys
    std::vector<std::string> retired; // identifiers of keys that a removal left
    bool marked = false;              // a services card bears the mark of a request
    std::string current;              // identifier of the one that ends last
    bool due = false;
    RememberedRenewal remembered;
};

std::string waiting_pair(const Inventory& inventory, Kind kind) {
    if (kind == Kind::services) return inventory.services_pending ? ZV_OWN_PAIR : "";
    const PendingPair* pending = inventory.pending_pair(kind);
    return pending == nullptr ? "" : pending->id;
}

// From the card itself: a list that lacks one would leave it there unsaid.
void add_certified(Standing& standing, const CardView& view, Kind kind) {
    for (const CardObject& object : view.objects()) {
        if (object.type != CKO_CERTIFICATE || view.find(CKO_PRIVATE_KEY, object.id) == nullptr ||
            kind_of_certificate(object.id, standing.card.services_card) != kind)
            continue;
        const Bytes der = without_padding(object.value);
        standing.certified.push_back({object.id, serial_of(der), der});
    }
}

void read_request(Standing& standing, const CardView& view, const std::string& file) {
    if (!is_a_file(file)) return;
    const std::string request = read_file(file, "file");
    standing.signer = signer_of_request(request);
    const Bytes key = modulus_of_request(request);
    standing.requested = !standing.waiting.empty() && !key.empty() && key == view.modulus(standing.waiting);
}

} // namespace

class PlannedRenewal::Work {
  public:
    Work(RenewalWishes wishes, CardChoice choice, PinSource& pin, Authority& authority)
        : wishes_(std::move(wishes)), choice_(std::move(choice)), pin_(pin), authority_(authority) {}

    void plan() {
        look();
        if (const std::string file = authority_.at_hand(); !file.empty() && plan_answer(file)) return;
        if (was_stored()) return plan_rest(standing_.remembered.pair);
        if (standing_.requested) return wait_for_answer();
        ask_card();
    }

    [[nodiscard]] const Plan& seen() const { return seen_; }

    [[nodiscard]] Renewal apply(Progress& progress) {
        try {
            return go_on(progress);
        } catch (const Error& error) {
            throw advised(error);
        }
    }

  private:
    [[nodiscard]] Renewal go_on(Progress& progress) {
        if (request_) make_request(progress);
        if (!install_ && !removal_ && !finished_ && !hand_over(progress)) return told();
        if (install_) install(progress);
        if (removal_) remove(progress);
        if (unmarks_) unmark(progress);
        forget();
        return told();
    }

    // What to do about a request or an installation by itself is not always what to do about a renewal.
    [[nodiscard]] Error advised(Error error) const {
        for (Advice& advice : error.advice) {
            if (advice.key == "new-pair") advice.says = {"renewal-new-pair", {{"pair", standing_.waiting}}};
            if (advice.key == "remove-old" && install_)
                advice.says = {"renewal-no-room", {{"file", answer_}}};
        }
        // A later step that did nothing does not know of those before it.
        if (!changed_) return error;
        if (error.exit == Exit::refused) error.exit = Exit::failed;
        if (!error.card || error.card->untouched) error.card = standing_.now;
        return error;
    }

    [[nodiscard]] Kind kind() const { return wishes_.request.kind; }

    void look() {
        OpenedCard card = open_card(choice_, pin_, Use::changing);
        pin_.bind(card.state.serial);
        const CardView view = view_card(card);
        const Inventory inventory = read_inventory(card, view, wishes_.backup);
        standing_.card = card.facts();
        standing_.now = view.contents();
        standing_.waiting = waiting_pair(inventory, kind());
        add_certified(standing_, view, kind());
        if (const CertificateRecord* current = inventory.current(kind())) {
            standing_.current = current->id;
            standing_.due = ends_within(current->ends, wishes_.request.days, std::time(nullptr));
        }
        standing_.marked = view.marked_pending();
        for (const RetiredPair& pair : inventory.retired)
            standing_.retired.push_back(pair.id);
        read_request(standing_, view, wishes_.request.out);
        const RememberedCard remembered = Journal().card(card.state.serial);
        if (const RememberedRenewal* renewal = remembered.renewal(kind())) standing_.remembered = *renewal;
        seen_ = unchanged(standing_.card, view);
    }

    [[nodiscard]] bool was_stored() const {
        const RememberedRenewal& remembered = standing_.remembered;
        const bool due_again = standing_.due && remembered.pair == standing_.current;
        return remembered.step == STORED && !due_again && standing_.waiting.empty() &&
               std::any_of(standing_.certified.begin(), standing_.certified.end(),
                           [&](const Candidate& one) { return one.id == remembered.pair; });
    }

    // A file that answers an earlier renewal, whose certificate is due by now, is no answer.
    bool plan_answer(const std::string& file) {
        try {
            plan_installation(file);
            return true;
        } catch (const Error& error) {
            const auto* stored = std::get_if<AlreadyStored>(&error.found);
            if (stored == nullptr) throw;
            if (standing_.due && stored->id == standing_.current) return false;
            left_ = error.advice;
            plan_rest(stored->id);
            return true;
        }
    }

    void plan_installation(const std::string& file) {
        const bool services = kind() == Kind::services;
        InstallWishes wishes;
        answer_ = file;
        wishes.certificate_file = file;
        if (standing_.requested) wishes.request_file = wishes_.request.out;
        wishes.replace = wishes_.replace;
        wishes.remove_old = services && wishes_.remove_old;
        wishes.removed_later = !services && wishes_.remove_old;
        wishes.backup = wishes_.backup;
        wishes.accept = wishes_.accept;
        try {
            install_.emplace(plan_install(wishes, choice_, pin_));
        } catch (Error& error) {
            if (std::get_if<AlreadyStored>(&error.found) == nullptr)
                error.advice.push_back(
                    {"other-file", {"renewal-answer-kept", {{"file", file}}}, {{"file", file}}});
            throw;
        }
        seen_ = install_->plan();
        if (wishes.removed_later) seen_.notices.emplace_back("renewal-removes-later", Values{});
    }

    void ask_card() {
        RequestWishes wishes = wishes_.request;
        wishes.force = wishes.force || !standing_.waiting.empty(); // what was begun is finished
        try {
            request_.emplace(plan_request(wishes, choice_, pin_));
        } catch (Error& error) {
            if (error.exit == Exit::nothing_due) advise_on_replaced(error.advice);
            throw;
        }
        seen_ = request_->plan();
        seen_.notices.emplace_back("renewal-asks-authority", Values{});
    }

    void wait_for_answer() {
        seen_.notices.emplace_back("renewal-waits",
                                   Values{{"pair", standing_.waiting}, {"file", wishes_.request.out}});
    }

    // What is to be done once the new certificate is on the card.
    void plan_rest(const std::string& pair) {
        finished_ = true;
        pair_ = pair;
        if (kind() == Kind::services) return plan_unmarking();
        if (!wishes_.remove_old) return;
        const std::string old = old_of(pair);
        if (old.empty()) return;
        RemovalWishes removal;
        removal.id = old;
        removal.backup = wishes_.backup;
        removal_.emplace(plan_removal(removal, choice_, pin_));
        seen_ = removal_->plan();
    }

    // A request that is answered is marked no longer; an installation that was broken off had no time for that.
    void plan_unmarking() {
        unmarks_ = installed_ ? installed_->mark_left : standing_.marked;
        if (unmarks_ && !installed_)
            seen_.changes.push_back(
                {Action::remove, ObjectClass::data, {}, ZV_PENDING_MARKER, 0, {"why-mark-removed", {}}});
    }

    // The certificate that goes: the one that is named, that signed the request, that this computer remembers, or the
    // only one that there is beside the new one. Nothing where nothing says it.
    [[nodiscard]] std::string old_of(const std::string& pair) const {
        if (!wishes_.replace.empty()) return wishes_.replace;
        std::vector<Candidate> others = standing_.certified;
        std::erase_if(others, [&](const Candidate& one) { return one.id == pair; });
        const RememberedRenewal& remembered = standing_.remembered;
        for (const Candidate& one : others)
            if ((!standing_.signer.empty() && one.der == standing_.signer) ||
                (remembered.pair == pair && remembered.replaces == one.id &&
                 remembered.replaced_serial == one.serial))
                return one.id;
        const auto& retired = standing_.retired;
        if (remembered.pair == pair &&
            std::find(retired.begin(), retired.end(), remembered.replaces) != retired.end())
            return remembered.replaces;
        return others.size() == 1 ? others.front().id : "";
    }

    void make_request(Progress& progress) {
        standing_.waiting = request_->pair();
        const MadeRequest made = request_->apply(progress);
        request_.reset();
        pair_ = made.pair;
        changed_ = true;
        note_pair(made.pair);
        standing_.requested = true;
        standing_.waiting = made.pair;
        RememberedRenewal renewal{kind(), made.pair, RENEWAL_REQUESTED, absolute(made.file), made.renews,
                                  {},     0};
        renewal.begun = std::time(nullptr);
        renewal.replaced_serial = serial_under(made.renews);
        for (const Candidate& one : standing_.certified)
            if (one.id == made.renews) standing_.signer = one.der;
        remember(renewal);
    }

    void note_pair(const std::string& pair) {
        std::vector<Held>& held = standing_.now.held;
        if (std::none_of(held.begin(), held.end(), [&](const Held& one) { return one.id == pair; }))
            held.push_back({pair, 0, true, true});
    }

    // False when the authority's certificate has not come yet.
    bool hand_over(Progress& progress) {
        stop_if_cancelled(progress);
        pair_ = standing_.waiting;
        progress.rests();
        const std::string file = authority_.ask(wishes_.request.out);
        if (file.empty()) return false;
        plan_installation(file);
        return true;
    }

    void install(Progress& progress) {
        stop_if_cancelled(progress);
        installed_ = install_->apply(progress);
        install_.reset();
        RememberedRenewal renewal = standing_.remembered;
        renewal.kind = kind();
        renewal.pair = installed_->pair;
        renewal.step = STORED;
        renewal.replaces = old_of(installed_->pair);
        renewal.replaced_serial = serial_under(renewal.replaces);
        remember(renewal);
        standing_.now = installed_->now;
        changed_ = true;
        plan_rest(installed_->pair);
    }

    void remove(Progress& progress) {
        stop_if_cancelled(progress);
        progress.step(Step(Sentence{"step-remove", {}}));
        const Removed removed = removal_->apply(progress);
        removal_.reset();
        removed_ = removed.id;
        backup_ = removed.backup;
        standing_.now = removed.now;
    }

    void unmark(Progress& progress) {
        progress.changing();
        OpenedCard card = open_card(choice_, pin_, Use::changing);
        remove_mark(card);
        const CardNow now = card_now(card);
        standing_.now = now.contents;
        if (!now.view || now.view->marked_pending()) return;
        const auto about_mark = [](const Advice& one) { return one.key == "mark"; };
        std::erase_if(left_, about_mark);
        if (installed_) std::erase_if(installed_->advice, about_mark);
    }

    void stop_if_cancelled(Progress& progress) const {
        if (!progress.cancelled()) return;
        Error error(Exit::failed, {"renewal-stopped", {}}, Advice{"repeat", {"renewal-again", {}}});
        error.about = standing_.card;
        error.card = standing_.now;
        throw Error(error);
    }

    void remember(const RememberedRenewal& renewal) {
        standing_.remembered = renewal;
        (void)Journal().change(serial(), [&](RememberedCard& card) { card.set_renewal(renewal); });
    }
    void forget() {
        if (!installed_ && removed_.empty() && !finished_) return;
        (void)Journal().change(serial(), [&](RememberedCard& card) { card.end_renewal(kind()); });
    }
    // Serial number of a certificate of the card.
    [[nodiscard]] std::string serial_under(const std::string& id) const {
        for (const Candidate& one : standing_.certified)
            if (one.id == id) return one.serial;
        return {};
    }
    [[nodiscard]] std::string serial() const {
        return standing_.card.state ? standing_.card.state->serial : "";
    }
    static std::string absolute(const std::string& file) {
        std::error_code none;
        return std::filesystem::absolute(file, none).string();
    }

    void advise_on_replaced(std::vector<Advice>& advice) const {
        for (const Candidate& one : standing_.certified)
            if (wishes_.remove_old && one.id != standing_.current && kind() != Kind::services)
                advice.push_back({"remove", {"renewal-kept", {{"id", one.id}}}, {{"id", one.id}}});
    }

    [[nodiscard]] Renewal told() const {
        Renewal renewal;
        renewal.card = standing_.card;
        renewal.kind = kind();
        renewal.done = finished_;
        renewal.pair = pair_;
        renewal.request = wishes_.request.out;
        renewal.installed = installed_;
        renewal.removed = removed_;
        renewal.backup = backup_.empty() && installed_ ? installed_->backup : backup_;
        renewal.now = standing_.now;
        renewal.advice = installed_ ? installed_->advice : left_;
        if (finished_ && removed_.empty()) advise_on_kept(renewal.advice);
        return renewal;
    }
    void advise_on_kept(std::vector<Advice>& advice) const {
        if (kind() == Kind::services) return;
        for (const Candidate& one : standing_.certified)
            if (one.id != pair_)
                advice.push_back({"remove", {"renewal-kept", {{"id", one.id}}}, {{"id", one.id}}});
    }

    RenewalWishes wishes_;
    CardChoice choice_;
    KeptPin pin_;
    Authority& authority_;
    Standing standing_;
    std::optional<PlannedRequest> request_;
    std::optional<PlannedInstall> install_;
    std::optional<PlannedRemoval> removal_;
    std::optional<Installed> installed_;
    std::vector<Advice> left_; // of what an installation before this run left
    bool unmarks_ = false;     // the mark of a request goes
    bool changed_ = false;     // the card, by this run
    std::string pair_;
    std::string answer_; // file of the authority's certificate
    std::string removed_;
    std::string backup_;
    bool finished_ = false; // the new certificate is on the card
    Plan seen_;
};

PlannedRenewal::PlannedRenewal(std::shared_ptr<Work> work) : work_(std::move(work)) {}

const Plan& PlannedRenewal::plan() const {
    return work_->seen();
}

Renewal PlannedRenewal::apply(Progress& progress) {
    return work_->apply(progress);
}

PlannedRenewal plan_renewal(const RenewalWishes& wishes, const CardChoice& choice, PinSource& pin,
                            Authority& authority) {
    const auto work = std::make_shared<PlannedRenewal::Work>(wishes, choice, pin, authority);
    work->plan();
    return PlannedRenewal(work);
}

} // namespace zvhost
