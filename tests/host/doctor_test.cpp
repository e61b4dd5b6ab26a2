#include "host/doctor_looks.h"
#include "host/in_child.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace {

using zvhost::ExaminedCard, zvhost::Finding, zvhost::Health, zvhost::Looks, zvhost::ModuleFacts,
    zvhost::SlotFacts;

constexpr const char* PATH = "/m/m.so";

CK_TOKEN_INFO token_with(CK_FLAGS flags) {
    CK_TOKEN_INFO token{};
    std::memset(&token, ' ', offsetof(CK_TOKEN_INFO, flags));
    token.flags = flags;
    token.ulFreePublicMemory = token.ulFreePrivateMemory = CK_UNAVAILABLE_INFORMATION;
    token.ulTotalPublicMemory = token.ulTotalPrivateMemory = CK_UNAVAILABLE_INFORMATION;
    return token;
}

constexpr CK_FLAGS READY = CKF_TOKEN_INITIALIZED | CKF_USER_PIN_INITIALIZED;

// What the doctor says of a card in the reader "R", which is in that slot.
Looks look_at(SlotFacts slot) {
    Looks looks{.now = 1};
    looks.cards = {ExaminedCard{"R", "3B00", "m.so", PATH, false}};
    slot.description = "R";
    ModuleFacts& module = looks.modules[PATH];
    module.reached = ModuleFacts::Stage::done;
    module.slots = {std::move(slot)};
    look_at_cards(looks);
    return looks;
}
Looks look_at(const CK_TOKEN_INFO& token) {
    return look_at(SlotFacts{.token = token});
}

// Which sentences are so.
std::vector<std::string> of_health(const Looks& looks, Health health) {
    std::vector<std::string> ids;
    for (const Finding& finding : looks.examination.findings)
        if (finding.health == health) ids.push_back(finding.says.id);
    return ids;
}
using Ids = std::vector<std::string>;

TEST(DoctorTest, ReadsACardsFlags) {
    EXPECT_EQ(of_health(look_at(token_with(READY)), Health::wrong), Ids{});
    EXPECT_EQ(of_health(look_at(token_with(0)), Health::wrong), Ids{"doctor-token-blank"});
    EXPECT_EQ(of_health(look_at(token_with(CKF_TOKEN_INITIALIZED)), Health::wrong),
              Ids{"doctor-pin-not-set"});
    EXPECT_EQ(
        of_health(look_at(token_with(READY | CKF_USER_PIN_LOCKED | CKF_USER_PIN_FINAL_TRY)), Health::wrong),
        Ids{"doctor-pin-locked"});
    EXPECT_EQ(of_health(look_at(token_with(READY | CKF_WRITE_PROTECTED)), Health::wrong),
              Ids{"doctor-write-protected"});
    EXPECT_EQ(of_health(look_at(token_with(READY | CKF_PROTECTED_AUTHENTICATION_PATH |
                                           CKF_USER_PIN_TO_BE_CHANGED | CKF_USER_PIN_COUNT_LOW)),
                        Health::warning),
              (Ids{"doctor-pin-low", "doctor-pin-to-be-changed", "doctor-keypad"}));
}

TEST(DoctorTest, SaysHowMuchRoomThereIs) {
    CK_TOKEN_INFO token = token_with(READY);
    EXPECT_EQ(of_health(look_at(token), Health::unknown), Ids{"doctor-room-unknown"});
    token.ulFreePublicMemory = 1000; // the private memory is not said
    EXPECT_EQ(of_health(look_at(token), Health::warning), Ids{"doctor-room-little"});
    token.ulFreePublicMemory = 30000;
    token.ulFreePrivateMemory = 40000;
    const Looks enough = look_at(token);
    EXPECT_EQ(of_health(enough, Health::warning), Ids{});
    token.ulTotalPublicMemory = token.ulFreePublicMemory = 0;
    token.ulTotalPrivateMemory = token.ulFreePrivateMemory = 0;
    EXPECT_EQ(of_health(look_at(token), Health::unknown), Ids{"doctor-room-unknown"})
        << "a full card has a size";
}

TEST(DoctorTest, NamesASlotThatCannotBeWorkedWithAndACardThatIsGone) {
    EXPECT_EQ(of_health(look_at(SlotFacts{.id = 10, .token = token_with(READY)}), Health::wrong),
              Ids{"doctor-slot-high"});
    EXPECT_EQ(of_health(look_at(SlotFacts{.id = 9, .token = token_with(READY)}), Health::wrong), Ids{});
    EXPECT_EQ(of_health(look_at(SlotFacts{}), Health::wrong), Ids{"doctor-token-silent"});
}

TEST(DoctorTest, DoubtsAClockThatIsOff) {
    for (const std::time_t off : {std::time_t{0}, std::time_t{1700000000}, std::time_t{5000000000}}) {
        Looks looks{.now = off};
        look_at_clock(looks);
        EXPECT_EQ(of_health(looks, Health::wrong), Ids{"doctor-clock-off"}) << off;
    }
    Looks looks{.now = 1800000000};
    look_at_clock(looks);
    EXPECT_EQ(of_health(looks, Health::right), Ids{"doctor-clock"});
}

TEST(ChildTest, TellsWhatItDidBeforeItEnded) {
    const auto killed = zvhost::in_child(
        [](const zvhost::Tell& tell) {
            tell("before");
            ::kill(::getpid(), SIGKILL);
        },
        600);
    EXPECT_EQ(killed.told, "before");
    EXPECT_EQ(killed.signal, SIGKILL);
    EXPECT_FALSE(killed.late);
    const auto hanging = zvhost::in_child(
        [](const zvhost::Tell& tell) {
            tell("begun");
            for (;;)
                ::pause();
        },
        0);
    EXPECT_TRUE(hanging.late) << "and it is gone";
    const std::string much(1000000, 'x');
    EXPECT_EQ(zvhost::in_child([&](const zvhost::Tell& tell) { tell(much); }, 600).told, much);
}

// As docs/cards.md tells the form.
TEST(CardTableTest, FindsTheEntryThatTheCryptoLibraryFinds) {
    const zvhost::CardTable table =
        zvhost::card_table_in("; comment\n[card one] ; more\natr = 3b:0X 0. ?1\nmodule=a.so ; x\n"
                              "\n  [ card  two names ]\n  atr : 3B000001\n  module : b.so\n"
                              "[reader r]\nname = long name\natr = 3B0000\n");
    ASSERT_NE(table.entry_for("3B0A0FF1"), nullptr);
    EXPECT_EQ(table.entry_for("3B0A0FF1")->name, "one");
    EXPECT_EQ(table.entry_for("3B000001")->module, "a.so") << "the first that matches";
    EXPECT_EQ(table.entry_for("3B0A0FF100"), nullptr);
    EXPECT_EQ(table.cards.at(1).name, "two names");
    EXPECT_EQ(table.cards.at(1).line, 6);
    ASSERT_NE(table.software_reader("long name"), nullptr);
    EXPECT_EQ(table.software_reader("r"), nullptr);
}

} // namespace
