#include "simcard/common/card_folder.h"
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
        ASSERT_NE(store(module, session, label), 0U);
        wanted += label + " ";
    }
    EXPECT_EQ(labels(module, session), wanted);
    restart();
    EXPECT_EQ(labels(module, session), wanted);
    EXPECT_EQ(find_all(module, session).front(), 1001U);

    const auto found = find_all(module, session);
    ASSERT_EQ(module->C_DestroyObject(session, found[3]), CKR_OK);
    EXPECT_EQ(module->C_DestroyObject(session, found[3]), CKR_OBJECT_HANDLE_INVALID);
    ASSERT_EQ(relabel(module, session, found[1], "new"), CKR_OK);
    ASSERT_NE(store(module, session, "last"), 0U);
    restart();
    EXPECT_EQ(labels(module, session), "0 new 2 4 11 6 1 8 3 10 5 last ");

    ASSERT_EQ(module->C_Logout(session), CKR_OK);
    Pair pair;
    CK_RV result = CKR_OK;
    const auto still_seen = find_all(module, session);
    for (const CK_OBJECT_HANDLE object : still_seen)
        EXPECT_EQ(module->C_DestroyObject(session, object), CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(relabel(module, session, still_seen.at(0), "x"), CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(store(module, session, "x", &result), 0U);
    EXPECT_EQ(result, CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(generate(module, session, "DS3", pair), CKR_USER_NOT_LOGGED_IN);
}

TEST_F(Objects, TakeBytesAndGiveThemBack) {
    constexpr unsigned long pair_bytes = 128 + 2 * 128 + 5 * 64;
    simcard::update_card(card.folder, [](simcard::Card& changed) { changed.memory_left = pair_bytes + 1; });
    const auto left = [&] {
        CK_TOKEN_INFO info{};
        EXPECT_EQ(module->C_GetTokenInfo(0, &info), CKR_OK);
        return info.ulFreePublicMemory;
    };
    Pair pair;
    ASSERT_EQ(generate(module, session, "DS3", pair), CKR_OK);
    EXPECT_EQ(left(), 1U);
    Pair other;
    EXPECT_EQ(generate(module, session, "DS4", other), CKR_DEVICE_MEMORY);
    for (const CK_OBJECT_HANDLE key : {pair.open, pair.secret})
        ASSERT_EQ(module->C_DestroyObject(session, key), CKR_OK);
    EXPECT_EQ(left(), pair_bytes + 1);
    EXPECT_EQ(generate(module, session, "DS4", other), CKR_OK);
}

TEST_F(Objects, AreFoundWhileASearchIsOpenAsBySoftHsm) {
    const auto first = store(module, session, "a");
    const auto second = store(module, session, "b");
    CK_OBJECT_HANDLE one = 0;
    CK_ULONG count = 9;
    EXPECT_EQ(module->C_FindObjects(session, &one, 1, &count), CKR_OPERATION_NOT_INITIALIZED);
    ASSERT_EQ(module->C_FindObjectsInit(session, nullptr, 0), CKR_OK);
    EXPECT_EQ(module->C_FindObjectsInit(session, nullptr, 0), CKR_OPERATION_ACTIVE);
    EXPECT_EQ(module->C_FindObjects(session, &one, 1, &count), CKR_OK);
    EXPECT_EQ(one, first);
    ASSERT_EQ(module->C_DestroyObject(session, first), CKR_OK);
    EXPECT_EQ(module->C_FindObjects(session, &one, 1, &count), CKR_OK);
    EXPECT_EQ(one, second);
    EXPECT_EQ(module->C_FindObjects(session, &one, 1, &count), CKR_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(module->C_FindObjectsFinal(session), CKR_OK);
    EXPECT_EQ(module->C_FindObjectsFinal(session), CKR_OPERATION_NOT_INITIALIZED);
}

TEST_F(Objects, FillTheCardAndTakeTheirTime) {
    simcard::update_card(card.folder, [](simcard::Card& card) {
        card.capacity = 3;
        card.latency_us = 20000;
    });
    Pair pair;
    CK_RV result = CKR_OK;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_NE(store(module, session, "a"), 0U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    ASSERT_NE(store(module, session, "b"), 0U);
    EXPECT_EQ(generate(module, session, "DS3", pair), CKR_DEVICE_MEMORY);
    const auto third = store(module, session, "c");
    EXPECT_EQ(store(module, session, "d", &result), 0U);
    EXPECT_EQ(result, CKR_DEVICE_MEMORY);
    CK_OBJECT_HANDLE copy = 0;
    EXPECT_EQ(module->C_CopyObject(session, third, nullptr, 0, &copy), CKR_DEVICE_MEMORY);
    CK_OBJECT_CLASS data = CKO_DATA;
    CK_ATTRIBUTE of_the_session = attribute(CKA_CLASS, data);
    EXPECT_EQ(module->C_CreateObject(session, &of_the_session, 1, &copy), CKR_OK);
    ASSERT_EQ(module->C_DestroyObject(session, copy), CKR_OK);
    ASSERT_EQ(module->C_DestroyObject(session, third), CKR_OK);
    EXPECT_NE(store(module, session, "d"), 0U);
    EXPECT_EQ(labels(module, session), "a b d ");
}

TEST_F(Objects, AreKeyPairsThatWereReadyMade) {
    const auto keys = cards.path() / "keys";
    Pair first;
    Pair second;
    module.use_keys(keys);
    ASSERT_EQ(generate(module, session, "DS3", first), CKR_OK);
    ASSERT_EQ(generate(module, session, "DS4", second), CKR_OK);
    const std::string moduli[] = {read(module, session, first.open, CKA_MODULUS),
                                  read(module, session, second.open, CKA_MODULUS)};
    EXPECT_EQ(moduli[0].size(), 128U);
    EXPECT_NE(moduli[0], moduli[1]);

    // What is gone from the card is handed out again.
    ASSERT_EQ(module->C_DestroyObject(session, first.open), CKR_OK);
    ASSERT_EQ(module->C_DestroyObject(session, first.secret), CKR_OK);
    ASSERT_EQ(generate(module, session, "DS5", first), CKR_OK);
    EXPECT_EQ(read(module, session, first.open, CKA_MODULUS), moduli[0]);
    EXPECT_EQ(read(module, session, first.secret, CKA_ID), "DS5");
    EXPECT_EQ(read(module, session, first.secret, CKA_PRIVATE_EXPONENT), "?");

    // Both keys or none.
    simcard::update_card(card.folder, [](simcard::Card& card) { card.capacity = 5; });
    EXPECT_EQ(generate(module, session, "DS6", second), CKR_DEVICE_MEMORY);
    EXPECT_EQ(find_all(module, session).size(), 4U);
}
