#include "simcard/tool/personalise.h"

#include "ossl/owners.h"
#include "simcard/authority/authority.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"
#include "simcard/common/make_card.h"
#include "simcard/tool/as_made.h"
#include "simcard/tool/card_objects.h"
#include "simcard/tool/card_plan.h"
#include "simcard/tool/personal_data.h"
#include "simcard/tool/token_session.h"

#include <algorithm>
#include <ctime>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr std::time_t CERTIFICATE_LIFE = 3 * ONE_YEAR;

Validity validity_ending_in(int days, std::time_t now) {
    const std::time_t end = now + days * ONE_DAY;
    return {std::min(now, end - CERTIFICATE_LIFE), end};
}

void make_home(const fs::path& home) {
    if (fs::create_directories(home)) fs::permissions(home, fs::perms::owner_all);
}

Card settings(const CardPlan& plan) {
    Card card;
    card.reader = plan.reader;
    card.atr = plan.profile->atr;
    card.serial = plan.serial;
    card.profile = plan.profile->name;
    card.label = plan.label.empty() ? plan.name : plan.label;
    card.memory_left = plan.memory_left;
    card.pin_each_signature = plan.profile->pin_each_signature;
    return card;
}

void store_pair(TokenSession& token, const CardPlan& plan, const PairPlan& pair, const Authority& authority,
                EVP_PKEY& key, std::time_t now) {
    const ossl::Certificate certificate =
        authority.issue(*pair.subject(plan.holder, plan.serial), key, kind_named(pair.kind),
                        validity_ending_in(plan.*pair.days, now));
    token.create(public_key_object(key, pair.id));
    const std::string_view asking = plan.profile->pin_each_signature;
    token.create(
        private_key_object(key, pair.id, !asking.empty() && std::string_view(pair.id).starts_with(asking)));
    token.create(certificate_object(*certificate, pair.id));
}

// A services card outlives its first certificate by another one's life.
Validity card_life(const CardPlan& plan, std::time_t now) {
    const Validity first = validity_ending_in(plan.cns_days, now);
    return {first.from, first.to + CERTIFICATE_LIFE};
}

void store_objects(TokenSession& token, const CardPlan& plan, const Authority& authority, KeySource& keys) {
    // One for all: of two that end on the same day none is the later.
    const std::time_t now = std::time(nullptr);
    for (const PairPlan& pair : plan.profile->pairs)
        store_pair(token, plan, pair, authority, *keys.next(), now);
    if (plan.profile->authority_id != nullptr)
        token.create(certificate_object(authority.certificate(), plan.profile->authority_id));
    if (plan.profile->has_personal_data)
        token.create(public_data_object("PDATA", personal_data(plan.holder, card_life(plan, now))));
}

void fill_card(const Card& card, const CardPlan& plan, const Authority& authority, const Fill& fill) {
    const SoftHsm hsm(card.folder.parent_path());
    TokenSession token(hsm, card);
    if (!token.login(plan.pin)) throw Failure("The new card does not take its PIN.");
    fill(token, plan, authority);
}

void move_in(Card& card, const fs::path& folder) {
    std::error_code error;
    fs::rename(card.folder, folder, error);
    if (error)
        throw Refusal("The card cannot be put into " + folder.string() + " (" + error.message() + ").");
    card.folder = folder;
}

} // namespace

Card make_filled_card(const fs::path& home, const CardPlan& wanted, KeySource& keys, const Fill& fill) {
    make_home(home);
    const CardPlan plan = completed(wanted, home);
    const Authority authority = Authority::open_or_create(Authority::folder_beside_cards(home), keys);
    // In a folder of its own until it is complete: nobody else's SoftHSM takes it for a token meanwhile.
    const TemporaryFolder workshop(home / ".making");
    Card card = make_card(workshop.path(), settings(plan), OFFICER_PIN, plan.pin.text());
    fill_card(card, plan, authority, fill);
    keep_as_made(card);
    move_in(card, home / plan.name);
    return card;
}

Card personalise_card(const fs::path& home, const CardPlan& plan, KeySource& keys) {
    return make_filled_card(home, plan, keys,
                            [&](TokenSession& token, const CardPlan& whole, const Authority& authority) {
                                store_objects(token, whole, authority, keys);
                            });
}

} // namespace simcard
