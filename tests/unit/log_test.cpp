#include "diag/log.h"
#include "diag/messages.h"
#include "tests/support/log_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using zvtest::LogFile;

TEST(Log, OneFileTwoForms) {
    LogFile log;
    const auto mode = [&log] { return unsigned(std::filesystem::status(log.path()).permissions()); };
    scriviLog("riga");
    scriviLog("");
    scriviLog(nullptr);
    WriteLog("titolo", "primo", 0, "", 0);
    WriteErr("titolo", nullptr, 0, "ab\0cd", 5);
    WriteLog("t", "never", -1, nullptr, 0);
    const std::string raw("ab\0cd", 5);
    EXPECT_EQ(log.text(),
              "[]: riga\n[]: MESSAGGIO VUOTO!\n[]: MESSAGGIO VUOTO!\n** titolo\nprimo\n\n** titolo\n" + raw +
                  "\n** t\n\n");
    EXPECT_EQ(mode(), 0600u);
    log.use(log.folder() / "older");
    std::ofstream(log.path()) << "readable by others";
    scriviLog("riga");
    EXPECT_EQ(mode(), 0600u);
    ::chmod(log.path().c_str(), 0640);
    scriviLog("riga");
    EXPECT_EQ(mode(), 0640u) << "the user's own wish";
}

TEST(Log, IsEmptiedPastOneMebibyteByTheShortFormAlone) {
    const LogFile log;
    std::ofstream(log.path()) << std::string(1'048'576, 'x');
    const std::string companion = log.path().string() + ".1";
    scriviLog("a");
    EXPECT_EQ(log.raw().substr(0, 2), "xx");
    EXPECT_FALSE(std::filesystem::exists(companion));
    WriteLog("t", "b", 0, "", 0);
    EXPECT_GT(log.raw().size(), 1'048'577u);
    std::ofstream(companion) << "old";
    scriviLog("c");
    EXPECT_EQ(log.text(), "[]: ----------------------------------\n[]: zvRenew\n[]: 1.0.4\n"
                          "[]: ----------------------------------\n[]: c\n");
    EXPECT_TRUE(std::filesystem::is_empty(companion));
}

TEST(Log, IsNeverLedElsewhere) {
    LogFile log;
    const auto target = log.folder() / "target";
    std::ofstream(target) << "kept";
    std::filesystem::create_symlink(target, log.path());
    scriviLog("line");
    WriteLog("t", "", 0, "", 0);
    EXPECT_EQ(std::filesystem::file_size(target), 4u);
    log.use(log.folder() / "missing" / "zvRenew.log");
    scriviLog("line");
    EXPECT_FALSE(std::filesystem::exists(log.folder() / "missing"));
    log.use(log.folder() / "pipe");
    ASSERT_EQ(::mkfifo(log.path().c_str(), 0600), 0);
    scriviLog("does not wait for a reader");
    log.use(log.folder() / "others");
    const std::string companion = log.path().string() + ".1";
    std::ofstream(log.path()) << "kept";
    if (::chown(log.path().c_str(), 65534, 65534) != 0) return;
    scriviLog("line");
    EXPECT_EQ(log.raw(), "kept");
    std::filesystem::rename(log.path(), companion);
    std::ofstream(log.path()) << std::string(1'048'577, 'x');
    scriviLog("line");
    EXPECT_EQ(std::filesystem::file_size(companion), 4u);
}

TEST(Log, Records) {
    const LogFile log;
    datiDN name{};
    std::strcpy(name.country, "IT");
    std::strcpy(name.orgUnit[4], "five");
    std::strcpy(name.email, "a@b");
    LogDN(&name);
    REQRENIN request{};
    std::strcpy(request.certificateLabel, "DS0");
    std::strcpy(request.pendingLabel, "DS3");
    LogLabels(&request);
    EXPECT_EQ(log.text(),
              "** LOG_DN\nDati DN\nDN_country = IT\nDN_organization = \nDN_orgUnit[0] = \n"
              "DN_orgUnit[1] = \nDN_orgUnit[2] = \nDN_orgUnit[3] = \nDN_orgUnit[4] = five\n"
              "DN_commonName = \nDN_description = \nDN_dnQualifier = \nDN_SerNum = \nDN_givenName = \n"
              "DN_surname = \nDN_eMail = a@b\n\n"
              "**  .... ReqCert FUN                    .... \nLabels\n"
              "certificateLabel = <DS0> pendingLabel = <DS3>\n");
}

TEST(Messages, AreLookedUpWithinTheTable) {
    loadErrorCodes();
    EXPECT_STREQ(zv::error_message(CKR_OK), "Operazione completata con successo");
    EXPECT_STREQ(errorMessages[0x82], "Il riferimento dell'oggetto specificato r' invalido");
    EXPECT_STREQ(errorMessages[0x1A1], "CKR_MUTEX_NOT_LOCKED");
    for (const CK_RV code : {0x4UL, 0x130UL, 0x1A2UL, 0x200UL, 0x80000001UL, ~0UL})
        EXPECT_STREQ(zv::error_message(code), "") << code;
    int filled = 0;
    for (const auto& message : errorMessages)
        filled += message[0] != '\0' ? 1 : 0;
    EXPECT_EQ(filled, 83);
}

} // namespace
