// Cards as they are made, changed and put back.
#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/as_made.h"
#include "simcard/tool/object_view.h"
#include "tests/simcard/objects.h"
#include "tests/simcard_tool/test_cards.h"

#include <openssl/x509v3.h>

#include <array>
#include <chrono>
#include <set>
#include <thread>

namespace {

using namespace simcard;

std::vector<std::string> summary(const Card& card, const std::string& pin) {
    std::vector<std::string> lines;
    for (const ObjectView& view : view_objects(card, pin)) {
        EXPECT_EQ(view.id, view.label);
        EXPECT_EQ(view.key_bits, 2048U);
        lines.push_back(view.object_class + " " + view.id);
    }
    return lines;
}

const std::vector<std::string> AS_MADE{"certificate AUTHCertificate0",
                                       "private key AUTHCertificate0",
                                       "public key AUTHCertificate0",
                                       "certificate DS0",
                                       "private key DS0",
                                       "public key DS0",
                                       "certificate Korvalenta Firma Dig"};

void change_everything(const Card& card) {
    zvtest::Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const CK_SESSION_HANDLE session = module.open();
    CK_UTF8CHAR before[] = "first pin", after[] = "12345678";
    ASSERT_EQ(module->C_SetPIN(session, before, 9, after, 8), CKR_OK);
    ASSERT_EQ(module.login(session, DEFAULT_PIN), CKR_OK);
    ASSERT_NE(zvtest::store(module, session, "later"), 0U);
    for (const auto& entry : std::filesystem::directory_iterator(card.folder))
        if (entry.path().extension() == ".object" && entry.path().filename() != "token.object") {
            std::filesystem::remove(entry.path());
            break;
        }
    update_card(card.folder, [](Card& changed) {
        changed.pin_tries_left = 0;
        changed.inserted = false;
        changed.insertions = 4;
    });
}

// The subject of a pair: what comes after it is made in a later second than what came before it.
ossl::Name name_after_a_second(const Holder& holder, const std::string& serial) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    return holder_name(holder, serial);
}

TEST(CardTest, HasCertificatesThatEndTogetherHoweverLongItsMakingTakes) {
    const std::array<PairPlan, 3> pairs{{{"DS0", "signature", &CardPlan::signature_days},
                                         {"DS3", "signature", &CardPlan::signature_days, name_after_a_second},
                                         {"DS4", "signature", &CardPlan::signature_days}}};
    Profile profile = profile_named("signature");
    profile.pairs = pairs;
    TestCards cards;
    const Card card = cards.make({.profile = &profile});
    zvtest::Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    std::set<std::time_t> ends;
    const CK_SESSION_HANDLE session = module.open();
    for (const CK_OBJECT_HANDLE object : zvtest::find_all(module, session)) {
        const std::string der = zvtest::read(module, session, object, CKA_VALUE, 4096);
        const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
        const ossl::Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
        if (!certificate || X509_check_ca(certificate.get()) != 0) continue;
        std::tm end{};
        ASSERT_EQ(ASN1_TIME_to_tm(X509_get0_notAfter(certificate.get()), &end), 1);
        ends.insert(::timegm(&end));
    }
    EXPECT_EQ(ends.size(), 1U);
}

TEST(CardTest, IsPutBackAsItWasMade) {
    TestCards cards;
    const Card card = cards.make({.reader = "Desk (left)", .pin = "first pin"});
    EXPECT_EQ(summary(card, "first pin"), AS_MADE);
    EXPECT_THROW((void)view_objects(card, "0000"), Refusal);
    ASSERT_NO_FATAL_FAILURE(change_everything(card));

    put_back_as_made(card.folder);
    EXPECT_EQ(summary(card, "first pin"), AS_MADE);
    const Card back = load_card(card.folder);
    EXPECT_EQ(back.reader, "Desk (left)");
    EXPECT_EQ(back.pin_tries_left, 3U);
    EXPECT_TRUE(back.inserted);
    EXPECT_EQ(back.insertions, 5U) << "what was open on the card before must be void";
}

TEST(CardTest, ShowsItsObjectsInTheOrderOfTheirMakingAndLetsThemBeDestroyed) {
    TestCards cards;
    const Card card = cards.make();
    for (int time = 0; time < 2; ++time) {
        zvtest::Module module;
        ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
        const CK_SESSION_HANDLE session = module.open();
        EXPECT_EQ(zvtest::labels(module, session),
                  "DS0 DS0 AUTHCertificate0 AUTHCertificate0 Korvalenta Firma Dig ");
        ASSERT_EQ(module.login(session, DEFAULT_PIN), CKR_OK);
        for (const CK_OBJECT_HANDLE object : zvtest::find_all(module, session)) {
            EXPECT_EQ(zvtest::read(module, session, object, CKA_PRIVATE_EXPONENT), "?");
            EXPECT_EQ(module->C_DestroyObject(session, object), CKR_OK) << time;
        }
        put_back_as_made(card.folder);
    }
}

TEST(CardTest, DoesNotTakeAReaderFromAnotherCard) {
    TestCards cards;
    const Card first = cards.make({.name = "first"});
    const Card second = cards.make({.name = "second"});
    EXPECT_EQ(first.reader, "Simulated Reader 0");
    EXPECT_EQ(second.reader, "Simulated Reader 1");
    EXPECT_THROW((void)cards.make({.name = "third", .reader = first.reader}), Refusal);
    update_card(first.folder, [](Card& card) { card.inserted = false; });
    (void)cards.make({.name = "third", .reader = first.reader});
    EXPECT_THROW(put_back_as_made(first.folder), Refusal);
    EXPECT_FALSE(load_card(first.folder).inserted);
}

TEST(CardTest, LeavesNothingOfOneThatCannotBeMade) {
    TestCards cards;
    for (const CardPlan& plan :
         {CardPlan{.name = "../card"}, CardPlan{.name = ".card"}, CardPlan{.name = std::string(33, 'a')},
          CardPlan{.name = "card", .reader = "a|b"}, CardPlan{.name = "card", .serial = "12345678901234567"},
          CardPlan{.name = "card", .pin = "123"}, CardPlan{.name = "card", .holder = {.surname = ""}}})
        EXPECT_THROW((void)cards.make(plan), Refusal);
    for (const auto& entry : std::filesystem::directory_iterator(cards.path()))
        EXPECT_EQ(entry.path().filename(), ".authority");
}

} // namespace
