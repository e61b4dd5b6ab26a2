// What a card holds and what is free on it, asked step by step.
#include "routines.h"
#include "store/renewal_state.h"
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;

class Inventory : public OpenFlow {};

TEST_F(Inventory, CensusTellsWhatTheCardHolds) {
    std::strcpy(zv::certificateLabel, "DS0");
    std::strcpy(zv::pendingLabel, "AUTHCertificate0");
    char text[1536] = "";
    EXPECT_EQ(FindAllObjects(0, text), 4);
    ASSERT_EQ(delete_all("DS0"), 0);
    ASSERT_EQ(delete_one(CKO_CERTIFICATE, "Korvalenta Firma Dig"), 0u);
    ASSERT_EQ(delete_one(CKO_CERTIFICATE, "AUTHCertificate0"), 0u);
    text[0] = '\0';
    EXPECT_EQ(FindAllObjects(0, text), 3);
    EXPECT_STREQ(text, "* Chiave pubblica \tkey type: RSA key\r\n* Chiave privata \tkey type: RSA key\r\n");
    std::memset(text, 'x', 1500);
    text[1500] = '\0';
    FindAllObjects(0, text);
    EXPECT_EQ(std::string(text).substr(1500), "") << "whole lines only";
    ASSERT_EQ(delete_all(""), 0);
    text[0] = '\0';
    EXPECT_EQ(FindAllObjects(0, text), 0);
    add_data("note", "x");
    EXPECT_EQ(FindAllObjects(0, text), 2);
    EXPECT_STREQ(text, "* Dati\r\n");
    module.add_rules("C_GetAttributeValue:2:answer:0x30");
    EXPECT_EQ(FindAllObjects(0, text), 1);
}

TEST_F(Inventory, BlankCardsHaveEveryIdentifierFree) {
    char pra[32], aut[32];
    ASSERT_EQ(delete_all(""), 0);
    EXPECT_EQ(findFreeCKAID(pra, aut, false), 0);
    EXPECT_STREQ(pra, "DS3");
    EXPECT_STREQ(aut, "AUTHCertificate3");
    module.add_rules("C_GetAttributeValue:1:answer:0x30");
    add_data("note", "x");
    force2048PraGen = false;
    EXPECT_EQ(findFreeCKAID(pra, aut, false), -1);
    EXPECT_TRUE(force2048PraGen);
    EXPECT_STREQ(pra, "");
    ckaid table[ZV_CKAIDS] = {};
    std::strcpy(table[9].id, "DS3");
    EXPECT_TRUE(presente(table, "DS3"));
    EXPECT_TRUE(presente(table, "")) << "an empty identifier matches an empty record";
    EXPECT_FALSE(presente(table, "DS"));
}

TEST_F(Inventory, FirstKeysAreNeverPending) {
    char pra[32], aut[32];
    ASSERT_EQ(delete_one(CKO_CERTIFICATE, "DS0"), 0u);
    ASSERT_EQ(delete_one(CKO_CERTIFICATE, "AUTHCertificate0"), 0u);
    EXPECT_EQ(findFreeCKAID(pra, aut, false), 0);
    EXPECT_STREQ(pra, "DS3");
    EXPECT_STREQ(aut, "AUTHCertificate3");
    int pending_pra = 0, pending_aut = 0;
    EXPECT_EQ(Find_ALL_Pending(&pending_pra, &pending_aut, pra, aut), 0);
    EXPECT_EQ(pending_pra + pending_aut, 0);
    EXPECT_STREQ(pra, "") << "no signature certificate, no proposal";
    EXPECT_STREQ(aut, "AUTHCertificate3") << "the authority's certificate counts as the other kind";
}

TEST_F(Inventory, ADumpThatFailsHasNoCount) {
    finalizza();
    std::string out, pin = PIN, library = path();
    module.add_rules("C_FindObjects:3:answer:0x30");
    EXPECT_EQ(renewDump(library.data(), pin.data(), 0, out), 0);
    EXPECT_FALSE(has(out, "Trovati"));
    EXPECT_EQ(renewDump(library.data(), pin.data(), 9, out), static_cast<int>(CKR_SLOT_ID_INVALID));
    EXPECT_EQ(zv::hSession, 0u);
}

} // namespace
