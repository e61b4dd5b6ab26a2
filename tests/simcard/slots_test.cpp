#include "simcard/common/text.h"
#include "tests/simcard/objects.h"

#include <fstream>

using namespace zvtest;

namespace {

std::vector<CK_SLOT_ID> slots(Module& module, CK_BBOOL with_card) {
    CK_SLOT_ID list[20];
    CK_ULONG count = 20;
    EXPECT_EQ(module->C_GetSlotList(with_card, list, &count), CKR_OK);
    return {list, list + count};
}

} // namespace

TEST(Slots, AreTheReadersInTheOrderOfTheirNamesAndTenAtMost) {
    EmptyCards cards;
    cards.add("Zeta Reader");
    cards.add("Alpha Reader", "A1");
    for (int i = 0; i < 9; ++i)
        cards.add("Reader " + std::to_string(i));
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(slots(module, CK_TRUE), (std::vector<CK_SLOT_ID>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    CK_ULONG count = 0;
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_OK);
    EXPECT_EQ(count, 10U);
    CK_SLOT_ID list[] = {77, 77};
    count = 1;
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, list, &count), CKR_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 10U);
    EXPECT_EQ(list[0], 77U);
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, list, nullptr), CKR_ARGUMENTS_BAD);

    CK_SLOT_INFO slot{};
    ASSERT_EQ(module->C_GetSlotInfo(9, &slot), CKR_OK);
    EXPECT_EQ(std::string(slot.slotDescription, slot.slotDescription + 64),
              "Reader 8" + std::string(56, ' '));
    EXPECT_EQ(slot.flags, CKF_TOKEN_PRESENT | CKF_REMOVABLE_DEVICE | CKF_HW_SLOT);
    CK_TOKEN_INFO token{};
    ASSERT_EQ(module->C_GetTokenInfo(0, &token), CKR_OK);
    EXPECT_EQ(std::string(token.serialNumber, token.serialNumber + 16), "A1" + std::string(14, ' '));
    EXPECT_EQ(simcard::unpadded(token.model), "signature");
    EXPECT_EQ(simcard::unpadded(token.label), "card");
    CK_SESSION_INFO session{};
    ASSERT_EQ(module->C_GetSessionInfo(module.open(2), &session), CKR_OK);
    EXPECT_EQ(session.slotID, 2U);
    EXPECT_EQ(module->C_GetSlotInfo(10, &slot), CKR_SLOT_ID_INVALID);
    EXPECT_EQ(module->C_GetTokenInfo(10, &token), CKR_SLOT_ID_INVALID);
}

TEST(Slots, LeaveOutWhatIsNoCard) {
    EmptyCards cards;
    const auto stray = cards.add("A");
    const auto broken = cards.add("B");
    auto foreign = cards.add("C");
    cards.add("D");
    std::filesystem::remove(stray.folder / simcard::CARD_FILE);
    std::ofstream(broken.folder / simcard::CARD_FILE) << "reader = B\npin_tries_left = many\n";
    foreign.token = "unknown";
    simcard::save_card(foreign);

    testing::internal::CaptureStderr();
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("\"pin_tries_left\" is not a number"),
              std::string::npos);
    EXPECT_EQ(slots(module, CK_TRUE).size(), 2U);
    CK_TOKEN_INFO token{};
    EXPECT_EQ(module->C_GetTokenInfo(0, &token), CKR_TOKEN_NOT_RECOGNIZED);
    EXPECT_EQ(module->C_GetTokenInfo(1, &token), CKR_OK);
}

TEST(CardFile, KeepsWhatItIsGivenAndRefusesTheRest) {
    simcard::Card card =
        simcard::parse_card("# made by hand\nreader = Desk \n\nlatency_us=70\n  owner = Mario = R ; who\n");
    EXPECT_EQ(card.reader, "Desk");
    EXPECT_EQ(card.latency_us, 70U);
    EXPECT_EQ(card.pin_tries_left, 3U);
    EXPECT_TRUE(card.inserted);
    const std::string text = simcard::card_text(card);
    EXPECT_NE(text.find("owner = Mario = R\n"), std::string::npos);
    EXPECT_EQ(simcard::card_text(simcard::parse_card(text)), text);

    for (const char* bad : {"", "reader = A\ninserted = maybe\n", "reader = A\ncapacity = -1\n", "reader\n",
                            "reader = A\nserial = 12345678901234567\n", "reader = A\npin_tries_left = 4\n",
                            "reader = A\n[more]\nowner = B\n"})
        EXPECT_THROW(static_cast<void>(simcard::parse_card(bad)), simcard::CardProblem) << bad;
    try {
        static_cast<void>(simcard::parse_card("reader = A\n\n two words\n"));
        FAIL();
    } catch (const simcard::CardProblem& problem) {
        EXPECT_STREQ(problem.what(), "card.ini: \"two words\" has no value.");
    }
    for (const std::string& reader : {std::string("two\nlines"), std::string("A ; B")}) {
        card.reader = reader;
        EXPECT_THROW(static_cast<void>(simcard::card_text(card)), simcard::CardProblem) << reader;
    }
    card.reader = "A;B";
    card.profile.assign(200, 'x');
    EXPECT_THROW(static_cast<void>(simcard::card_text(card)), simcard::CardProblem);
    card.profile.resize(150);
    EXPECT_EQ(simcard::parse_card(simcard::card_text(card)).reader, "A;B");
}

TEST(CardFolder, HoldsNothingOfACardWhosePinIsRefused) {
    EmptyCards cards;
    simcard::Card settings;
    settings.reader = "A";
    EXPECT_THROW(static_cast<void>(simcard::make_card(cards.path(), settings, SO_PIN, "1")),
                 simcard::CardProblem);
    EXPECT_TRUE(std::filesystem::is_empty(cards.path()));
}
