#include "front/slot_numbers.h"
#include "tests/front/front.h"

#include <fstream>

using namespace zvtest;
using Numbers = std::vector<CK_SLOT_ID>;

namespace {

// SoftHSM as it is, whose slots have numbers of many digits, on the tokens of a folder of cards.
class BeforeSoftHsm : public testing::Test {
  protected:
    BeforeSoftHsm() {
        const auto file = cards.path() / "softhsm2.conf";
        std::ofstream(file) << "directories.tokendir = " << cards.path().string() << "\nlog.level = ERROR\n";
        ::setenv("SOFTHSM2_CONF", file.c_str(), 1);
        cards.add("First");
        cards.add("Second");
    }
    ~BeforeSoftHsm() override { ::unsetenv("SOFTHSM2_CONF"); }

    EmptyCards cards;
    Front front{ZVFRONT_SOFTHSM};
};

} // namespace

TEST_F(BeforeSoftHsm, NumbersItsSlotsInItsOrder) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(front.slots(), (Numbers{0, 1, 2}));
    EXPECT_EQ(front.slots(CK_TRUE), (Numbers{0, 1, 2}));
    CK_SLOT_INFO slot{};
    CK_TOKEN_INFO tokens[2] = {};
    CK_ULONG count = 0;
    CK_MECHANISM_INFO mechanism{};
    for (const CK_SLOT_ID number : {0UL, 1UL}) {
        EXPECT_EQ(front->C_GetSlotInfo(number, &slot), CKR_OK);
        EXPECT_EQ(front->C_GetTokenInfo(number, &tokens[number]), CKR_OK);
        EXPECT_EQ(front->C_GetMechanismList(number, nullptr, &count), CKR_OK);
        EXPECT_EQ(front->C_GetMechanismInfo(number, CKM_RSA_PKCS, &mechanism), CKR_OK);
        const auto session = front.open(number);
        CK_SESSION_INFO info{};
        ASSERT_EQ(front->C_GetSessionInfo(session, &info), CKR_OK);
        EXPECT_EQ(info.slotID, number);
        EXPECT_EQ(front->C_CloseAllSessions(number), CKR_OK);
        EXPECT_EQ(front->C_GetSessionInfo(session, &info), CKR_SESSION_HANDLE_INVALID);
    }
    EXPECT_NE(std::string(tokens[0].serialNumber, tokens[0].serialNumber + 16),
              std::string(tokens[1].serialNumber, tokens[1].serialNumber + 16));
    EXPECT_EQ(front->C_GetSlotInfo(3, &slot), CKR_SLOT_ID_INVALID);
    std::string pin = SO_PIN;
    std::string label(32, ' ');
    const auto text = [](std::string& of) { return reinterpret_cast<CK_UTF8CHAR*>(of.data()); };
    EXPECT_EQ(front->C_InitToken(2, text(pin), pin.size(), text(label)), CKR_OK);
}

TEST_F(BeforeSoftHsm, GivesAListNoMoreRoomThanItHas) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    CK_SLOT_ID list[] = {77, 77};
    CK_ULONG count = 2;
    EXPECT_EQ(front->C_GetSlotList(CK_TRUE, list, &count), CKR_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(list[0], 77U);
    EXPECT_EQ(front->C_GetSlotList(CK_FALSE, list, nullptr), CKR_ARGUMENTS_BAD);
}

TEST(SlotNumbers, StayWithTheirReader) {
    zvfront::SlotNumbers slots;
    slots.take({500, 900});
    EXPECT_EQ(slots.slot(1), 900U);
    // A reader that the module lists in front of the others, while one is away.
    slots.take({100, 900});
    EXPECT_EQ(slots.number(900), 1U);
    EXPECT_EQ(slots.number(100), 2U);
    EXPECT_EQ(slots.slot(0), std::nullopt);
    EXPECT_EQ(slots.numbers(), (Numbers{1, 2}));
    slots.take({500, 100, 900});
    EXPECT_EQ(slots.slot(0), 500U);
}

TEST(SlotNumbers, TakeTheOnesOfReadersThatAreGoneWhenTenAreUsed) {
    zvfront::SlotNumbers slots;
    for (CK_SLOT_ID id = 100; id < 110; ++id)
        slots.take({50, id});
    EXPECT_EQ(slots.number(50), 0U);
    EXPECT_EQ(slots.number(109), 1U);
    slots.take({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    EXPECT_EQ(slots.numbers(), (Numbers{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}
