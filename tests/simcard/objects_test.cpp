#include "tests/simcard/objects.h"

#include <chrono>

using namespace zvtest;

using Objects = EmptyCard;

// SoftHSM lists objects in the order of their addresses: with twelve, only luck would keep the order of
// creation.
TEST_F(Objects, AreListedInTheOrderInWhichTheyWereMade) {
    std::string wanted;
    for (int i = 0; i < 12; ++i) {
        const std::string label = std::to_string(i * 7 % 12);
        ASSERT_NE(store(module_, session_, label), 0U);
        wanted += label + " ";
    }
    EXPECT_EQ(labels(module_, session_), wanted);
    restart();
    EXPECT_EQ(labels(module_, session_), wanted);
    EXPECT_EQ(find_all(module_, session_).front(), 1001U);

    const auto found = find_all(module_, session_);
    ASSERT_EQ(module_->C_DestroyObject(session_, found[3]), CKR_OK);
    EXPECT_EQ(module_->C_DestroyObject(session_, found[3]), CKR_OBJECT_HANDLE_INVALID);
    ASSERT_EQ(relabel(module_, session_, found[1], "new"), CKR_OK);
    ASSERT_NE(store(module_, session_, "last"), 0U);
    restart();
    EXPECT_EQ(labels(module_, session_), "0 new 2 4 11 6 1 8 3 10 5 last ");

    ASSERT_EQ(module_->C_Logout(session_), CKR_OK);
    Pair pair;
    CK_RV result = CKR_OK;
    const auto still_seen = find_all(module_, session_);
    for (const CK_OBJECT_HANDLE object : still_seen)
        EXPECT_EQ(module_->C_DestroyObject(session_, object), CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(relabel(module_, session_, still_seen.at(0), "x"), CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(store(module_, session_, "x", &result), 0U);
    EXPECT_EQ(result, CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(generate(module_, session_, "DS3", pair), CKR_USER_NOT_LOGGED_IN);
}

TEST_F(Objects, AreFoundWhileASearchIsOpenAsBySoftHsm) {
    const auto first = store(module_, session_, "a");
    const auto second = store(module_, session_, "b");
    CK_OBJECT_HANDLE one = 0;
    CK_ULONG count = 9;
    EXPECT_EQ(module_->C_FindObjects(session_, &one, 1, &count), CKR_OPERATION_NOT_INITIALIZED);
    ASSERT_EQ(module_->C_FindObjectsInit(session_, nullptr, 0), CKR_OK);
    EXPECT_EQ(module_->C_FindObjectsInit(session_, nullptr, 0), CKR_OPERATION_ACTIVE);
    EXPECT_EQ(module_->C_FindObjects(session_, &one, 1, &count), CKR_OK);
    EXPECT_EQ(one, first);
    ASSERT_EQ(module_->C_DestroyObject(session_, first), CKR_OK);
    EXPECT_EQ(module_->C_FindObjects(session_, &one, 1, &count), CKR_OK);
    EXPECT_EQ(one, second);
    EXPECT_EQ(module_->C_FindObjects(session_, &one, 1, &count), CKR_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(module_->C_FindObjectsFinal(session_), CKR_OK);
    EXPECT_EQ(module_->C_FindObjectsFinal(session_), CKR_OPERATION_NOT_INITIALIZED);
}

TEST_F(Objects, FillTheCardAndTakeTheirTime) {
    simcard::update_card(card_.folder, [](simcard::Card& card) {
        card.capacity = 3;
        card.latency_us = 20000;
    });
    Pair pair;
    CK_RV result = CKR_OK;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_NE(store(module_, session_, "a"), 0U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    ASSERT_NE(store(module_, session_, "b"), 0U);
    EXPECT_EQ(generate(module_, session_, "DS3", pair), CKR_DEVICE_MEMORY);
    const auto third = store(module_, session_, "c");
    EXPECT_EQ(store(module_, session_, "d", &result), 0U);
    EXPECT_EQ(result, CKR_DEVICE_MEMORY);
    CK_OBJECT_HANDLE copy = 0;
    EXPECT_EQ(module_->C_CopyObject(session_, third, nullptr, 0, &copy), CKR_DEVICE_MEMORY);
    CK_OBJECT_CLASS data = CKO_DATA;
    CK_ATTRIBUTE of_the_session = attribute(CKA_CLASS, data);
    EXPECT_EQ(module_->C_CreateObject(session_, &of_the_session, 1, &copy), CKR_OK);
    ASSERT_EQ(module_->C_DestroyObject(session_, copy), CKR_OK);
    ASSERT_EQ(module_->C_DestroyObject(session_, third), CKR_OK);
    EXPECT_NE(store(module_, session_, "d"), 0U);
    EXPECT_EQ(labels(module_, session_), "a b d ");
}

TEST_F(Objects, AreKeyPairsThatWereReadyMade) {
    const auto keys = cards_.path() / "keys";
    Pair first;
    Pair second;
    module_.use_keys(keys);
    ASSERT_EQ(generate(module_, session_, "DS3", first), CKR_OK);
    ASSERT_EQ(generate(module_, session_, "DS4", second), CKR_OK);
    const std::string moduli[] = {read(module_, session_, first.open, CKA_MODULUS),
                                  read(module_, session_, second.open, CKA_MODULUS)};
    EXPECT_EQ(moduli[0].size(), 128U);
    EXPECT_NE(moduli[0], moduli[1]);

    // What is gone from the card is handed out again.
    ASSERT_EQ(module_->C_DestroyObject(session_, first.open), CKR_OK);
    ASSERT_EQ(module_->C_DestroyObject(session_, first.secret), CKR_OK);
    ASSERT_EQ(generate(module_, session_, "DS5", first), CKR_OK);
    EXPECT_EQ(read(module_, session_, first.open, CKA_MODULUS), moduli[0]);
    EXPECT_EQ(read(module_, session_, first.secret, CKA_ID), "DS5");
    EXPECT_EQ(read(module_, session_, first.secret, CKA_PRIVATE_EXPONENT), "?");

    // Both keys or none.
    simcard::update_card(card_.folder, [](simcard::Card& card) { card.capacity = 5; });
    EXPECT_EQ(generate(module_, session_, "DS6", second), CKR_DEVICE_MEMORY);
    EXPECT_EQ(find_all(module_, session_).size(), 4U);
}
