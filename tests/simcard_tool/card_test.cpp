// Cards as they are made, changed and put back.
#include "simcard/authority/authority.h"
#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/as_made.h"
#include "simcard/tool/object_view.h"
#include "simcard/tool/token_session.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/module.h"

#include <array>
#include <gtest/gtest.h>
#include <openssl/objects.h>
#include <openssl/x509v3.h>
#include <regex>

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

const std::vector<std::string> as_made{"certificate AUTHCertificate0",
                                       "private key AUTHCertificate0",
                                       "public key AUTHCertificate0",
                                       "certificate DS0",
                                       "private key DS0",
                                       "public key DS0",
                                       "certificate Korvalenta Firma Dig"};

// An attribute of the object with that class and identifier, or what else it is known by.
std::string read(TokenSession& token, CK_OBJECT_CLASS wanted, const std::string& id, CK_ATTRIBUTE_TYPE type,
                 CK_ATTRIBUTE_TYPE known_by = CKA_ID) {
    for (const CK_OBJECT_HANDLE object : token.objects()) {
        const std::string bytes = token.attribute(object, CKA_CLASS).value_or("");
        if (bytes == std::string(reinterpret_cast<const char*>(&wanted), sizeof wanted) &&
            token.attribute(object, known_by) == id)
            return token.attribute(object, type).value_or("(not shown)");
    }
    return "(no object)";
}

TEST(CardTest, HoldsItsProfilesObjects) {
    TestCards cards;
    const Card card = cards.make({.reader = "Desk (left)", .serial = "9000000000000001"});
    EXPECT_EQ(summary(card, default_pin), as_made);
    EXPECT_EQ(load_card(card.folder).reader, "Desk (left)");
    EXPECT_THROW((void)view_objects(card, "0000"), Refusal);

    const SoftHsm hsm(cards.path());
    TokenSession token(hsm, card);
    ASSERT_TRUE(token.login(default_pin));
    EXPECT_EQ(read(token, CKO_PRIVATE_KEY, "DS0", CKA_PRIVATE_EXPONENT), "(not shown)");
    EXPECT_EQ(read(token, CKO_PRIVATE_KEY, "DS0", CKA_MODULUS),
              read(token, CKO_PUBLIC_KEY, "DS0", CKA_MODULUS));
    EXPECT_NE(read(token, CKO_PRIVATE_KEY, "DS0", CKA_MODULUS),
              read(token, CKO_PRIVATE_KEY, "AUTHCertificate0", CKA_MODULUS));
}

// The identifiers in the order in which the card's module gives them, to a user who is not logged in.
std::vector<std::string> identifiers_through_the_module() {
    zvtest::Module card;
    card->C_Initialize(nullptr);
    const CK_SESSION_HANDLE session = card.open();
    card->C_FindObjectsInit(session, nullptr, 0);
    std::vector<std::string> found;
    CK_OBJECT_HANDLE object = 0;
    CK_ULONG count = 0;
    while (card->C_FindObjects(session, &object, 1, &count) == CKR_OK && count == 1) {
        std::array<char, 64> id{};
        CK_ATTRIBUTE wanted{CKA_ID, id.data(), id.size()};
        card->C_GetAttributeValue(session, object, &wanted, 1);
        found.emplace_back(id.data());
    }
    return found;
}

TEST(CardTest, ShowsItsObjectsInTheOrderOfTheirMaking) {
    TestCards cards;
    const Card card = cards.make();
    const std::vector<std::string> in_order{"DS0", "DS0", "AUTHCertificate0", "AUTHCertificate0",
                                            "Korvalenta Firma Dig"};
    EXPECT_EQ(identifiers_through_the_module(), in_order);
    put_back_as_made(card.folder);
    EXPECT_EQ(identifiers_through_the_module(), in_order);
}

TEST(CardTest, HasCertificatesForItsHolderFromTheAuthority) {
    TestCards cards;
    const Card card = cards.make({.serial = "77", .signature_days = 12});
    const SoftHsm hsm(cards.path());
    TokenSession token(hsm, card);
    const std::string der = read(token, CKO_CERTIFICATE, "DS0", CKA_VALUE);
    const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
    const Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
    ASSERT_TRUE(certificate);
    EXPECT_EQ(
        readable(*X509_get_subject_name(certificate.get())),
        "C=IT, O=Non presente, CN=Ada Collaudo, serialNumber=TINIT-CLLDAA80A41Z999U, SN=Collaudo, GN=Ada, "
        "dnQualifier=77");
    EXPECT_EQ(X509_get_key_usage(certificate.get()), std::uint32_t{KU_NON_REPUDIATION});
    const Authority authority = Authority::open(Authority::folder_beside_cards(cards.path()));
    EXPECT_EQ(X509_verify(certificate.get(), X509_get0_pubkey(&authority.certificate())), 1);
    std::time_t early = std::time(nullptr) + 12 * one_day - 60;
    std::time_t late = early + 120;
    EXPECT_EQ(X509_cmp_time(X509_get0_notAfter(certificate.get()), &early), 1);
    EXPECT_EQ(X509_cmp_time(X509_get0_notAfter(certificate.get()), &late), -1);
}

TEST(CardTest, ServicesCardHoldsItsOwnPairAndPersonalData) {
    TestCards cards;
    const Card card = cards.make({.profile = &profile_named("cns-signature"), .serial = "42"});
    std::vector<std::string> all;
    for (const ObjectView& view : view_objects(card, default_pin))
        all.push_back(view.object_class + " " + view.id + " " + view.label);
    EXPECT_EQ(all, (std::vector<std::string>{"data  PDATA", "certificate CNS0 CNS0", "private key CNS0 CNS0",
                                             "public key CNS0 CNS0", "certificate DS0 DS0",
                                             "private key DS0 DS0", "public key DS0 DS0"}));
    const SoftHsm hsm(cards.path());
    TokenSession token(hsm, card);
    const std::string data = read(token, CKO_DATA, "PDATA", CKA_VALUE, CKA_LABEL);
    EXPECT_TRUE(std::regex_match(
        data, std::regex("00003C05ZVSIM08[0-9]{8}08[0-9]{8}08Collaudo03Ada10CLLDAA80A41Z999U")))
        << data;
    const std::string der = read(token, CKO_CERTIFICATE, "CNS0", CKA_VALUE);
    const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
    const Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
    ASSERT_TRUE(certificate);
    const X509_NAME& subject = *X509_get_subject_name(certificate.get());
    EXPECT_TRUE(std::regex_match(value_in_name(subject, NID_commonName),
                                 std::regex("CLLDAA80A41Z999U/0000000000000042\\.[A-Za-z0-9+/]{27}=")))
        << readable(subject);
    EXPECT_EQ(person_in_name(subject), "CLLDAA80A41Z999U");
    EXPECT_EQ(kind_of(*certificate).name, std::string("cns"));
}

void change_everything(const TestCards& cards, const Card& card) {
    const SoftHsm hsm(cards.path());
    TokenSession token(hsm, card);
    ASSERT_TRUE(token.login(default_pin));
    Attributes marker;
    marker.add_number(CKA_CLASS, CKO_DATA)
        .add_flag(CKA_TOKEN, true)
        .add(CKA_LABEL, "later")
        .add(CKA_VALUE, "1");
    token.create(std::move(marker));
    ASSERT_EQ(token.objects().size(), as_made.size() + 1);
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

TEST(CardTest, IsPutBackAsItWasMade) {
    TestCards cards;
    const Card card = cards.make({.pin = "first pin"});
    const auto change_pin = [&](std::string from, std::string to) {
        const SoftHsm hsm(cards.path());
        CK_SESSION_HANDLE session = 0;
        hsm->C_OpenSession(*hsm.slot_of(card.token), CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr,
                           &session);
        return hsm->C_SetPIN(session, reinterpret_cast<CK_UTF8CHAR*>(from.data()), from.size(),
                             reinterpret_cast<CK_UTF8CHAR*>(to.data()), to.size());
    };
    ASSERT_EQ(change_pin("first pin", default_pin), CKR_OK);
    ASSERT_NO_FATAL_FAILURE(change_everything(cards, card));

    put_back_as_made(card.folder);
    EXPECT_EQ(summary(card, "first pin"), as_made);
    const Card back = load_card(card.folder);
    EXPECT_EQ(back.pin_tries_left, 3U);
    EXPECT_TRUE(back.inserted);
    EXPECT_EQ(back.insertions, 5U) << "what was open on the card before must be void";
}

TEST(CardTest, ObjectsOfACardThatWasPutBackCanBeDestroyed) {
    TestCards cards;
    const Card card = cards.make();
    for (int time = 0; time < 2; ++time) {
        const SoftHsm hsm(cards.path());
        TokenSession token(hsm, card);
        ASSERT_TRUE(token.login(default_pin));
        CK_SESSION_HANDLE session = 0;
        hsm->C_OpenSession(*hsm.slot_of(card.token), CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr,
                           &session);
        for (const CK_OBJECT_HANDLE object : token.objects())
            EXPECT_EQ(hsm->C_DestroyObject(session, object), CKR_OK) << time;
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
