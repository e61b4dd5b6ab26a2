// Token objects: searching, reading, deleting, markers.
#include "routines.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;
using Lines = std::vector<std::string>;

class Store : public OpenFlow {};

TEST_F(Store, OneObjectIsDeletedByItsExactIdentifier) {
    EXPECT_EQ(delete_one(CKO_CERTIFICATE, "DS"), 0xFFFFFFFFu);
    EXPECT_EQ(zv::rv, CKR_OK);
    EXPECT_TRUE(has(log.text(), "** DeleteAnObject\nErrore nella cancellazione\nLabel = DS\n"));
    EXPECT_EQ(delete_one(CKO_CERTIFICATE, "DS0"), 0u);
    module.add_rules("C_FindObjectsFinal:1:do-and-answer:0x30");
    EXPECT_EQ(delete_one(CKO_PUBLIC_KEY, "DS0"), 0xFFFFFFFFu)
        << "a search that cannot be closed found nothing";
    module.add_rules("C_DestroyObject:1:answer:0x31");
    EXPECT_EQ(delete_one(CKO_PUBLIC_KEY, "DS0"), 0x31u);
    EXPECT_EQ(objects().size(), 6u);
}

TEST_F(Store, DeletionByTextTakesEveryClassAndGoesOnAfterAFailure) {
    add_data("note", "text");
    module.add_rules("C_DestroyObject:1:answer:0x31");
    EXPECT_EQ(delete_all("S0"), 0);
    EXPECT_TRUE(
        has(log.text(),
            "Trovato Oggetto CKO_PUBLIC_KEY\n\n** DeleteObjectByLabel\nErrore nella cancellazione Oggetto "
            "CKO_PUBLIC_KEY\nLabel = S0\n"));
    EXPECT_TRUE(has(log.text(), "Cancellazione Oggetto CKO_CERTIFICATE effettuata\n"));
    EXPECT_EQ(objects(),
              (Lines{"data  labelled note", "certificate AUTHCertificate0", "private key AUTHCertificate0",
                     "public key AUTHCertificate0", "public key DS0", "certificate Korvalenta Firma Dig"}));
    module.add_rules("C_FindObjectsInit:1:answer:0x30");
    EXPECT_EQ(delete_all("DS"), 1);
    module.add_rules("C_FindObjects:1:answer:0x30");
    EXPECT_EQ(delete_all("DS"), 1);
    EXPECT_EQ(delete_all(""), 0);
    EXPECT_EQ(objects(), (Lines{"data  labelled note"})) << "data without an identifier is passed over";
}

TEST_F(Store, PendingPrefixIsDeletedWithANewSearchEach) {
    for (const char* label : {"pending_a", "other", "pending_b", "pending_CNS_key"})
        add_data(label, "1");
    module.reset();
    module.record();
    EXPECT_EQ(DeleteAllPending(nullptr), 0);
    EXPECT_EQ(module.calls("C_DestroyObject"), 3u);
    EXPECT_EQ(module.calls("C_FindObjectsInit"), 4u);
    EXPECT_EQ(module.calls("C_FindObjectsFinal"), 3u) << "the last search stays open";
    zv::end_search({zv::hSession});
    EXPECT_TRUE(has(log.text(), "**  .... DeleteAllPending (Objects) FUN .... \nC_FindObjectsInit\n"));
    add_data("pending_a", "1");
    add_data("pending_b", "1");
    module.reset();
    module.add_rules("C_DestroyObject:2+:answer:0");
    EXPECT_EQ(DeleteAllPending(nullptr), 1) << "one that stays is not destroyed without end";
    EXPECT_EQ(module.calls("C_DestroyObject"), 2u);
}

TEST_F(Store, PrivateKeyDecidesWhetherAPairIsPending) {
    std::strcpy(zv::pendingLabel, "DS0");
    EXPECT_EQ(CheckPendingKeys(nullptr, true), 0);
    EXPECT_NE(zv::hPrivateKey, 0u);
    EXPECT_NE(zv::hPublicKey, 0u);
    ASSERT_EQ(delete_one(CKO_PRIVATE_KEY, "DS0"), 0u);
    log.clear();
    EXPECT_EQ(CheckPendingKeys(nullptr, false), 100);
    EXPECT_NE(zv::hPublicKey, 0u);
    EXPECT_EQ(zv::hPrivateKey, 0u);
    EXPECT_FALSE(has(log.text(), "Messaggio di Errore"));
    zv::pendingLabel[0] = '\0';
    EXPECT_EQ(CheckPendingKeys(nullptr, false), 0) << "every key contains nothing";
    for (const char* rule :
         {"C_FindObjectsInit", "C_FindObjects", "C_GetAttributeValue", "C_FindObjectsFinal"}) {
        module.add_rules(std::string(rule) + ":1:answer:0x30");
        EXPECT_EQ(CheckPendingKeys(nullptr, true), 1) << rule;
        zv::end_search({zv::hSession});
    }
}

TEST_F(Store, MarkersAreWrittenOnceAndRemoved) {
    const std::string long_label(65, 'l'), long_value(2049, 'v');
    module.reset();
    EXPECT_EQ(DataStore(zv::hSession, long_label.c_str(), "1", "", false, true), 0xFFFFFFFFu);
    EXPECT_EQ(DataStore(zv::hSession, "l", "", "", false, true), 0xFFFFFFFFu);
    EXPECT_EQ(DataStore(zv::hSession, "l", long_value.c_str(), "", false, true), 0xFFFFFFFFu);
    EXPECT_EQ(module.calls(), 0u);
    module.record();
    add_data("pending_CNS_key", "1");
    EXPECT_TRUE(has(module.recorded(),
                    "C_CreateObject hSession=1 pTemplate={CKA_CLASS 8 0000000000000000, CKA_LABEL 15 "
                    "70656E64696E675F434E535F6B6579, CKA_PRIVATE 1 01, CKA_MODIFIABLE 1 01, CKA_TOKEN 1 "
                    "01, CKA_VALUE "))
        << module.recorded();
    // SoftHSM does not let it be changed, and the code comes through.
    EXPECT_EQ(DataStore(zv::hSession, "pending_CNS_key", "2", "", true, true),
              unsigned{CKR_ATTRIBUTE_READ_ONLY});
    EXPECT_EQ(module.calls("C_CreateObject"), 1u);
    EXPECT_EQ(module.calls("C_SetAttributeValue"), 1u);
    char label[] = "pending_CNS_key";
    EXPECT_EQ(DeleteDataPendingCNS(zv::hSession, label), 0u);
    EXPECT_EQ(DeleteDataPendingCNS(zv::hSession, label), 0u);
    EXPECT_EQ(objects().size(), 7u);
    EXPECT_EQ(log.text(), "");
    char certificate[] = "DS0";
    EXPECT_EQ(DeleteDataPendingCNS(zv::hSession, certificate), 0u);
    EXPECT_EQ(objects().size(), 7u) << "only data is a marker";
}

TEST_F(Store, TracedCallsDifferInWhatAFailureLogs) {
    char title[] = "t";
    module.add_rules("C_FindObjectsInit:1:answer:0x30;C_FindObjectsFinal:1:answer:0x91");
    EXPECT_EQ(FindObjectsInit(nullptr, title, zv::hSession, nullptr, 0), CKR_DEVICE_ERROR);
    EXPECT_TRUE(
        has(log.text(),
            "** t\nC_FindObjectsInit\nhSession = 0x1\n** Messaggio di Errore\nErrore nella ricerca degli "
            "oggetti presenti sulla smartcard (Sono occorsi"));
    EXPECT_EQ(FindObjectsFinal(nullptr, title, zv::hSession), CKR_OPERATION_NOT_INITIALIZED);
    EXPECT_TRUE(has(log.text(), "** t\nC_FindObjectsFinal\nErrore = 0x145\n** Messaggio di Errore\n"));
    unsigned char value[4];
    CK_ATTRIBUTE entry = {CKA_VALUE, value, sizeof value};
    module.add_rules("C_GetAttributeValue:1:absurd:length");
    CK_OBJECT_HANDLE object = 0;
    CK_OBJECT_CLASS object_class = CKO_CERTIFICATE;
    CK_ATTRIBUTE by_class = zv::attribute_of(CKA_CLASS, object_class);
    EXPECT_EQ(FindAnObject(zv::hSession, &by_class, 1, &object), CKR_BUFFER_TOO_SMALL);
    EXPECT_NE(object, 0u) << "the handle is written all the same";
    EXPECT_EQ(GetAttributeValue(nullptr, title, zv::hSession, object, &entry, 1), CKR_BUFFER_TOO_SMALL);
    EXPECT_TRUE(has(log.text(),
                    "** t\nC_GetAttributeValue\nErrore = 0x336\n** Messaggio di Errore\nErrore nella lettura "
                    "chiave sulla smartcard (Il risultato"));
    module.add_rules("C_FindObjects:1:absurd:count");
    EXPECT_EQ(FindAnObject(zv::hSession, &by_class, 1, &object), CKR_GENERAL_ERROR);
}

} // namespace
