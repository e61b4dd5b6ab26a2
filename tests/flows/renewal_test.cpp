// A signature certificate renewed from the first reading to the last, and the log of it.
#include "card/detection.h"
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;
using Lines = std::vector<std::string>;

TEST_F(Flow, RenewalReplacesTheOldPairAndItsLogIsTheGoldenOne) {
    Reading reading = read();
    ASSERT_EQ(reading.result, 0) << szBuffErr;
    EXPECT_EQ(reading.key_pra, "DS3");
    EXPECT_EQ(reading.key_aut, "AUTHCertificate3");
    EXPECT_STREQ(zv::szSerialNumber, "9000111122223333");
    ASSERT_EQ(request(reading.key_pra, "DS0"), 0) << szBuffErr << szSockMsg;
    ASSERT_EQ(save(issue(), false), 0) << szBuffErr << szSockMsg;
    expect_golden("renewal.log", masked_log());
    EXPECT_EQ(objects(),
              (Lines{"certificate AUTHCertificate0", "private key AUTHCertificate0",
                     "public key AUTHCertificate0", "certificate DS3", "private key DS3", "public key DS3"}));
    EXPECT_TRUE(pair_works("DS3"));
    reading = read();
    EXPECT_EQ(reading.pending_pra, 0);
    EXPECT_EQ(reading.key_pra, "DS4");
    EXPECT_EQ(tries_left(), 3);
    for (const char* file : {"/tmp/tmpReqFile", "/tmp/szP7MName", "/tmp/szP7MNameB64"})
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
}

TEST_F(Flow, AuthenticationCertificateIsRenewedToo) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request_authentication("AUTHCertificate3", "AUTHCertificate0"), 0) << szBuffErr << szSockMsg;
    ASSERT_EQ(save_authentication(issue(), false, "AUTHCertificate0", "AUTHCertificate3"), 0);
    EXPECT_EQ(objects(), (Lines{"certificate AUTHCertificate3", "private key AUTHCertificate3",
                                "public key AUTHCertificate3", "certificate DS0", "private key DS0",
                                "public key DS0", "certificate Korvalenta Firma Dig"}));
    EXPECT_TRUE(pair_works("AUTHCertificate3"));
}

} // namespace
