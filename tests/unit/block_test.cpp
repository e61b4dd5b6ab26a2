#include "api/command_block.h"
#include "api/state.h"
#include "card/detection.h"
#include "card/session.h"
#include "routines/api.h"
#include "store/renewal_state.h"
#include "tests/support/log_file.h"

#include <gtest/gtest.h>

namespace {

std::string write(std::string label, const char* pin = "12345", const char* chain = "",
                  std::string pending = "DS3") {
    zv::slot = 2;
    std::strcpy(zv::Libreria, "/dir/lib.so");
    ResettaDN();
    std::strcpy(zv::dNameRen.commonName, "N");
    std::strcpy(zv::dNameRen.stateOrProvince, "RM");
    RichiestaMinInfo(label.data(), pin, chain, pending.data(), "PRA", "D");
    return zv::szBufferRichiesta;
}

REQRENIN parsed(const std::string& block) {
    REQRENIN record{};
    zv::parse_block(block, record);
    return record;
}

TEST(Block, IsWrittenWithItsKeysInOrder) {
    EXPECT_EQ(write("DS0"),
              "BEGIN_STRING\nslot:2\ncertificatelabel:DS0\nszdll:/dir/lib.so\nszpin:12345\nsztipocert:PRA\n"
              "ckeepkeys:D\npendinglabel:DS3\nszcertchain:\ncommonname:N\ncountry:\ndescription:\n"
              "dnqualifier:\nemail:\ngivenname:\norganization:\norgunit0:\norgunit1:\norgunit2:\n"
              "orgunit3:\norgunit4:\nsernum:\nsurname:\nlocality:\ntitle:\npseudonym:\n"
              "stateOrProvince:RM\nEND_STRING\n");
    std::string label = "DS0", pending = "DS3";
    const unsigned long length = RichiestaMinInfo(label.data(), "1", "", pending.data(), "PRA", "D");
    EXPECT_STREQ(zv::szBufferRichiesta + length, "\nEND_STRING\n");
    EXPECT_EQ(write("DS0", "1", std::string(7999, 'c').c_str()), "");
}

TEST(Block, IsReadLineByLine) {
    const REQRENIN record = parsed("BEGIN_STRING\nslot:12\nx certificatelabel:  DS0  \nszpin: 1 2\nno key\n"
                                   "pendinglabel:a\npendinglabel:b\nslot:3 title:T\ncountry:ITA\n"
                                   "xxEND_STRINGxx\nsurname:late\n");
    EXPECT_EQ(record.slot, '3') << "the first key of the table wins in a line with two";
    EXPECT_STREQ(record.certificateLabel, "  DS0");
    EXPECT_STREQ(record.szPin, " 1 2");
    EXPECT_STREQ(record.pendingLabel, "b");
    EXPECT_STREQ(record.dn.title, "");
    EXPECT_STREQ(record.dn.country, "IT");
    EXPECT_STREQ(record.dn.surname, "");
    EXPECT_EQ(parsed("slot:1\n").slot, '\0') << "not a block";
    EXPECT_EQ(parsed("BEGIN_STRING\nslot:12").slot, '1');
}

TEST(Block, CommandsRunWhateverTheBlockHolds) {
    const zvtest::LogFile log;
    char block[] = "BEGIN_STRING\ncertificatelabel:DS0\npendinglabel:DS3\nckeepkeys:R\nsurname:S\n",
         none[] = "nothing";
    char out[64] = "kept";
    long length = sizeof out;
    zv::hPrivateKey = 7;
    EXPECT_EQ(miExecCmd("OTHER", block, 0, out, &length), -1);
    EXPECT_STREQ(zv::certificateLabel, "DS0");
    EXPECT_STREQ(zv::pendingLabel, "DS3");
    EXPECT_STREQ(zv::dName.surname, "S");
    EXPECT_EQ(zv::cKeepKeys, 'R');
    EXPECT_EQ(zv::hPrivateKey, 0u);
    EXPECT_EQ(miExecCmd("REQSCA", none, 0, out, &length), -1);
    EXPECT_NE(
        log.text().find(
            "** INIZIALIZZA_FUN\nSlotNum = 0x-48\n\n** INIZIALIZZA_FUN\nLoadLibrary: \nRet Code = 0x-1\n"),
        std::string::npos);
    EXPECT_STREQ(out, "kept");
    EXPECT_EQ(length, 64);
}

} // namespace
