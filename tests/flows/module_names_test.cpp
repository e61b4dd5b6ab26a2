// Whole renewals through modules whose names change what is sent to the card.
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;

struct NamedModule {
    const char* name;
    bool tells_exponent; // of a new key pair
    bool relabels;       // the pair, when its certificate is installed
    bool relabels_back;  // the pair, when it could not be installed
};

void PrintTo(const NamedModule& module, std::ostream* out) {
    *out << module.name;
}

class ModuleNames : public Flow, public testing::WithParamInterface<NamedModule> {
  protected:
    ModuleNames() : Flow({}, GetParam().name) {}
    // A "+" for every object that got the pair's texts since the record was begun.
    std::string relabelled() {
        std::string all;
        for (const std::string& call : calls_of("C_SetAttributeValue", module.recorded()))
            all += has(call, "pTemplate={CKA_ID 3 445333, CKA_LABEL 3 445333} ulCount=2 -> 0x0") ? "+" : call;
        module.reset();
        return all;
    }
};

TEST_P(ModuleNames, DecideWhatIsSent) {
    ASSERT_EQ(read().result, 0) << szBuffErr;
    module.record();
    ASSERT_EQ(request(), 0) << szBuffErr << szSockMsg;
    const std::string exponent = GetParam().tells_exponent ? "CKA_PUBLIC_EXPONENT 3 010001, " : "";
    EXPECT_TRUE(
        has(module.recorded(), "pPublicKeyTemplate={CKA_MODULUS_BITS 8 0008000000000000, " + exponent +
                                   "CKA_TOKEN 1 01, CKA_LABEL 3 445333, CKA_ID 3 445333, CKA_VERIFY 1 01} "
                                   "ulPublicKeyAttributeCount=" +
                                   (exponent.empty() ? "5 " : "6 ")))
        << module.recorded();
    EXPECT_TRUE(has(module.recorded(),
                    "pPrivateKeyTemplate={CKA_TOKEN 1 01, CKA_PRIVATE 1 01, CKA_SENSITIVE 1 01, CKA_LABEL 3 "
                    "445333, CKA_ID 3 445333, CKA_DECRYPT 1 01, CKA_SIGN 1 01}"));
    const std::string certificate = issue();
    module.reset();
    module.record();
    module.add_rules("C_CreateObject:1:answer:0x31");
    EXPECT_EQ(save(certificate, true), 1);
    const std::string pair = GetParam().relabels ? "++" : "", back = GetParam().relabels_back ? "++" : "";
    EXPECT_EQ(has(log.text(), "RechangeValueObject FUN"), GetParam().relabels_back);
    EXPECT_TRUE(has(log.text(),
                    "Certificato non memorizzato correttamente sulla smartcard (La smartcard non ha memoria"))
        << "the pair's relabelling says nothing of the certificate";
    EXPECT_EQ(relabelled(), pair + back);
    module.record();
    ASSERT_EQ(save(certificate, false), 0) << szBuffErr;
    EXPECT_EQ(relabelled(), pair);
    EXPECT_TRUE(pair_works("DS3"));
    EXPECT_EQ(objects().size(), 6u);
}

// Only libcardos11.dylib is compared in the case of its letters.
INSTANTIATE_TEST_SUITE_P(AllNames, ModuleNames,
                         testing::Values(NamedModule{"libcardos11.dylib", true, true, true},
                                         NamedModule{"libCardOS11.dylib", false, true, true},
                                         NamedModule{"libcardos11.so", false, true, true},
                                         NamedModule{"InCryptoki2.dylib", false, false, false},
                                         NamedModule{"libBIT4ipki.dylib", false, false, true},
                                         NamedModule{"bit4HIPKI.so", false, false, true},
                                         NamedModule{"libbit4xPKI.dylib", false, true, false},
                                         NamedModule{"libbit4xpki.so", false, true, true},
                                         NamedModule{"CNSPKCS11.dylib", false, false, false}),
                         [](const auto& module) {
                             std::string name = module.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

class OwnModule : public Flow {
  protected:
    OwnModule() : Flow({.profile = &simcard::profile_named("cns")}, "libCnsPkcs11.dylib") {}
};

TEST_F(OwnModule, LeavesTheTextsOfAServicesCardsPair) {
    ASSERT_EQ(read().result, 0) << szBuffErr;
    ASSERT_EQ(request_authentication("CNS0", "CNS0"), 0) << szBuffErr << szSockMsg;
    const std::string certificate = issue();
    module.add_rules("C_CreateObject:1:answer:0x31");
    EXPECT_EQ(save_authentication(certificate, false, "CNS0", "CNS0"), 1);
    EXPECT_EQ(save_authentication(certificate, true, "CNS0", "CNS0"), 0);
    EXPECT_EQ(module.calls("C_SetAttributeValue"), 0u);
    EXPECT_TRUE(pair_works("CNS0"));
}

} // namespace
