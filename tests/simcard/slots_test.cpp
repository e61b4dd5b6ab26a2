#include "simcard/common/text.h"
#include "tests/simcard/objects.h"
#include "tests/support/card.h"

#include <fstream>
#include <gtest/gtest.h>

using namespace zvtest;

namespace {

std::vector<CK_SLOT_ID> slots(Module& module, CK_BBOOL with_card) {
    CK_SLOT_ID list[20];
    CK_ULONG count = 20;
    EXPECT_EQ(module->C_GetSlotList(with_card, list, &count), CKR_OK);
    return {list, list + count};
}

} // namespace

TEST(Slots, AreTheReadersInTheOrderOfTheirNames) {
    EmptyCards cards;
    cards.add("Zeta Reader", "0000000000000Z");
    cards.add("Alpha Reader", "A1");
    cards.add("Mid Reader");
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(slots(module, CK_FALSE), (std::vector<CK_SLOT_ID>{0, 1, 2}));

    CK_SLOT_INFO slot{};
    ASSERT_EQ(module->C_GetSlotInfo(2, &slot), CKR_OK);
    EXPECT_EQ(std::string(slot.slotDescription, slot.slotDescription + 64),
              "Zeta Reader" + std::string(53, ' '));
    EXPECT_EQ(slot.flags, CKF_TOKEN_PRESENT | CKF_REMOVABLE_DEVICE | CKF_HW_SLOT);
    CK_TOKEN_INFO token{};
    ASSERT_EQ(module->C_GetTokenInfo(0, &token), CKR_OK);
    EXPECT_EQ(std::string(token.serialNumber, token.serialNumber + 16), "A1" + std::string(14, ' '));
    EXPECT_EQ(simcard::unpadded(token.model), "signature");
    EXPECT_EQ(simcard::unpadded(token.label), "card");
    CK_SESSION_INFO session{};
    ASSERT_EQ(module->C_GetSessionInfo(module.open(2), &session), CKR_OK);
    EXPECT_EQ(session.slotID, 2U);
    EXPECT_EQ(module->C_GetSlotInfo(3, &slot), CKR_SLOT_ID_INVALID);
    EXPECT_EQ(module->C_GetTokenInfo(3, &token), CKR_SLOT_ID_INVALID);
}

TEST(Slots, TellTheirNumberAndRefuseAShortList) {
    EmptyCards cards;
    cards.add("A");
    cards.add("B");
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    CK_ULONG count = 0;
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_OK);
    EXPECT_EQ(count, 2U);
    CK_SLOT_ID list[] = {77, 77};
    count = 1;
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, list, &count), CKR_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(list[0], 77U);
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, list, nullptr), CKR_ARGUMENTS_BAD);
}

TEST(Slots, AreTenAtMost) {
    EmptyCards cards;
    for (int i = 0; i < 11; ++i)
        cards.add("Reader " + std::to_string(10 + i));
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(slots(module, CK_TRUE).size(), 10U);
    CK_SLOT_INFO slot{};
    ASSERT_EQ(module->C_GetSlotInfo(9, &slot), CKR_OK);
    EXPECT_EQ(simcard::unpadded(slot.slotDescription), "Reader 19");
}

TEST(Slots, LeaveOutWhatIsNoCard) {
    EmptyCards cards;
    const auto stray = cards.add("A");
    const auto broken = cards.add("B");
    auto foreign = cards.add("C");
    cards.add("D");
    std::filesystem::remove(stray.folder / simcard::card_file);
    std::ofstream(broken.folder / simcard::card_file) << "reader = B\npin_tries_left = many\n";
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
        simcard::parse_card("# made by hand\nreader = Desk \n\nlatency_us=70\nowner = Mario = R\n");
    EXPECT_EQ(card.reader, "Desk");
    EXPECT_EQ(card.latency_us, 70U);
    EXPECT_EQ(card.pin_tries_left, 3U);
    EXPECT_TRUE(card.inserted);
    const std::string text = simcard::card_text(card);
    EXPECT_NE(text.find("owner = Mario = R\n"), std::string::npos);
    EXPECT_EQ(simcard::card_text(simcard::parse_card(text)), text);

    for (const char* bad : {"", "reader = A\ninserted = maybe\n", "reader = A\ncapacity = -1\n", "reader\n",
                            "reader = A\nserial = 12345678901234567\n", "reader = A\npin_tries_left = 4\n"})
        EXPECT_THROW(static_cast<void>(simcard::parse_card(bad)), simcard::CardProblem) << bad;
    card.reader = "two\nlines";
    EXPECT_THROW(static_cast<void>(simcard::card_text(card)), simcard::CardProblem);
}

TEST(MakingACard, LeavesNothingWhenThePinIsRefused) {
    EmptyCards cards;
    simcard::Card settings;
    settings.reader = "A";
    EXPECT_THROW(static_cast<void>(simcard::make_card(cards.path(), settings, so_pin, "1")),
                 simcard::CardProblem);
    EXPECT_TRUE(std::filesystem::is_empty(cards.path()));
}
