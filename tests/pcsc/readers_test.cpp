// The crypto library and card detection on a real PC/SC service.
#include "card/detection.h"
#include "routines/card.h"
#include "tests/pcsc/needs_readers.h"
#include "tests/support/log_file.h"
#include "zvCrypt.h"

#include <winscard.h>

namespace {

using namespace std::string_literals;
const std::string CNS = "3BFF1800008131FE45006B04050100012101434E5310318059", DESK = "Desk Reader 00 00",
                  OTHER = "Desk Reader 00 01";

class Readers : public testing::Test {
  protected:
    void SetUp() override {
        ZVTEST_NEEDS_READERS();
        ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
        std::strcpy(zv::pwd, "/nowhere");
        set_ATRini_path(nullptr);
    }

    // The text, or after a failure its code's last two digits and its reason.
    static std::string told(int code, const char* text) {
        char reason[512] = "";
        EXPECT_EQ(kvLastError(reason, sizeof reason), code);
        return code == ZVC_OK ? text : std::to_string(code % 0x100) + " " + reason;
    }
    static std::string list() {
        char text[ZVC_READER_LIST_SIZE] = "?";
        return told(kvGetReader(text), text);
    }
    static std::string module(std::string reader) {
        char text[ZVC_MODULE_NAME_SIZE] = "?";
        const std::string result = told(kvGetPKCS11FromATR(reader.data(), text), text);
        return kvIsCNSINCARD() != 0 ? result + " CNS" : result;
    }
    using Found = std::pair<int, std::string>; // what detection gives, and the module that it chose
    static Found detect(const char* reader = nullptr) {
        bool touch_sign = false;
        const int code = CheckSmartCard(touch_sign, const_cast<char*>(reader));
        return {code, zv::Libreria};
    }

    zvtest::LogFile log;
    simcard::VirtualReaders pcsc;
};

} // namespace

TEST_F(Readers, CardsComeAndGo) {
    const std::string gone = "16 Il servizio PC/SC dei lettori di smart card non è attivo o non risponde";
    EXPECT_EQ(list(), gone);
    EXPECT_EQ(detect(), Found(ZVC_ERR_NO_SERVICE, ""));
    pcsc.start("");
    EXPECT_EQ(list(), "") << "a service without readers";
    EXPECT_EQ(detect(), Found(0, ""));
    EXPECT_EQ(detect("Desk Reader"), Found(ZVC_ERR_UNKNOWN_READER, ""));
    pcsc.stop();

    pcsc.start();
    EXPECT_EQ(list(), DESK + "|" + OTHER + "|");
    EXPECT_EQ(detect(), Found(ZVC_ERR_NO_CARD, ""));
    pcsc.insert(1, {"--atr", CNS});
    EXPECT_EQ(list(), OTHER + "|" + DESK + "|") << "the one with a card first";
    EXPECT_EQ(module(OTHER), "opensc-pkcs11.so CNS");
    EXPECT_EQ(module(DESK), "19 Nessuna smart card nel lettore " + DESK);
    EXPECT_EQ(detect(), Found(-1, "/nowhere/opensc-pkcs11.so"));
    EXPECT_TRUE(zv::isCNS);
    SCARDHANDLE context = 0, card = 0;
    DWORD protocol = 0;
    ::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context);
    ASSERT_EQ(::SCardConnect(context, OTHER.c_str(), SCARD_SHARE_EXCLUSIVE, 3, &card, &protocol), 0);
    EXPECT_EQ(module(OTHER), "opensc-pkcs11.so CNS") << "another program has the card to itself";
    ::SCardReleaseContext(context);
    pcsc.insert(0, {"--mute"});
    EXPECT_EQ(list(), OTHER + "|" + DESK + "|") << "the one whose card answers first";
    EXPECT_EQ(module(DESK), "20 La smart card nel lettore " + DESK +
                                " non risponde: controllare che sia inserita dal lato giusto");
    pcsc.pull(1);
    EXPECT_EQ(module(OTHER), "19 Nessuna smart card nel lettore " + OTHER);
    pcsc.stop();
    EXPECT_EQ(module(DESK), gone) << "the service was killed";
}

TEST_F(Readers, TheTableSaysWhichModule) {
    pcsc.start();
    pcsc.insert(0, {"--atr", "3B021450"});
    EXPECT_EQ(module(DESK), "") << "an unknown card";
    EXPECT_EQ(detect(), Found(100, ""));
    std::ofstream(log.folder() / "atr.ini") << "[card a]\natr = 3B02....\nmodule = libhost.so\nflags = cns\n";
    set_ATRini_path(log.folder().c_str());
    EXPECT_EQ(detect(), Found(-1, "/nowhere/libhost.so"));
    EXPECT_TRUE(zv::isCNS);
}

TEST_F(Readers, NamesAreTakenAsTheyAre) {
    // The service cuts the last two, one of them inside a character.
    for (const std::string& given :
         {"Lettore è €"s, "100%s %n %1$s"s, " Blanks  \t "s, "[CCID]; #'(1)"s, std::string(121, 'L'),
          std::string(300, 'M'), std::string(120, 'N') + "è"}) {
        pcsc.start(given);
        const std::string first = given.substr(0, 121) + " 00 00";
        EXPECT_EQ(list(), first + "|" + given.substr(0, 121) + " 00 01|");
        EXPECT_EQ(detect(), Found(ZVC_ERR_NO_CARD, ""));
        EXPECT_NE(log.raw().find(": " + first + "\n"), std::string::npos) << first;
        EXPECT_EQ(detect((first + " and more").c_str()),
                  Found(first.size() > 120 ? ZVC_ERR_NO_CARD : ZVC_ERR_UNKNOWN_READER, ""));
        pcsc.stop();
    }
    pcsc.start("A|B");
    EXPECT_EQ(list(), "17 Il lettore \"A|B 00 01\" ha nel nome il separatore '|' e non può essere elencato");
    EXPECT_EQ(module("A|B 00 00"), "19 Nessuna smart card nel lettore A|B 00 00");
}
