#include "crypt/atr.h"
#include "tests/crypt/certificates.h"
#include "tests/crypt/scratch.h"

#include <chrono>
#include <regex>
#include <thread>

namespace {

using test::last_error;

class Lookup : public test::Scratch {
  protected:
    void configure(const std::string& text) {
        ::setenv("ZVCRYPT_CONF", write("zvcrypt.conf", text).c_str(), 1);
    }

    std::string readers(int expected = ZVC_OK) {
        char list[ZVC_READER_LIST_SIZE + 1] = {};
        list[ZVC_READER_LIST_SIZE] = 'x';
        EXPECT_EQ(kvGetReader(list), expected) << last_error();
        EXPECT_EQ(list[ZVC_READER_LIST_SIZE], 'x');
        return list;
    }
    // With a folder its atr.ini is asked too.
    std::string module(std::string reader, const char* ini_dir = nullptr, int expected = ZVC_OK) {
        char text[ZVC_MODULE_NAME_SIZE] = "x";
        const int code = ini_dir == nullptr ? kvGetPKCS11FromATR(reader.data(), text)
                                            : kvGetPKCS11FromATRLite(reader.data(), text, ini_dir);
        EXPECT_EQ(code, expected) << last_error();
        return text;
    }
};

const std::string DESK_READER = "[reader Scrivania]\natr = 3BFF1800\n";
const std::string CNS_ATR = "3BFF1800008131FE45006B04050100012101434E5310318059";
const std::string CNS_READER = "[reader A]\natr = " + CNS_ATR + "\n";

} // namespace

TEST_F(Lookup, WithoutServiceThereAreTheSoftwareReadersOrAReason) {
    EXPECT_EQ(readers(ZVC_ERR_NO_SERVICE), "");
    EXPECT_NE(last_error().find("PC/SC"), std::string::npos);
    configure("\xEF\xBB\xBF[reader uno]\nname = Lettore [CCID] 00 00 ; il nome ha le parentesi\natr = 3b 00\n"
              "# commento\n  [reader due]  ; indentato\n\tatr = 3F:00\r\n");
    EXPECT_EQ(readers(), "Lettore [CCID] 00 00|due|");
    EXPECT_EQ(last_error(), "");
    module("tre", nullptr, ZVC_ERR_NO_SERVICE);

    std::string eight;
    for (char c = 'a'; c < 'i'; ++c)
        eight += "[reader " + std::string(120, c) + "]\natr = 3B00\n";
    for (const auto& [length, size] : {std::pair{54U, 1023U}, {55U, 968U}}) { // whole names only
        configure(eight + "[reader " + std::string(length, 'z') + "]\natr = 3B00\n");
        EXPECT_EQ(readers().size(), size);
    }
    EXPECT_EQ(kvGetReader(nullptr), ZVC_ERR_ARGUMENT);
}

TEST_F(Lookup, TheFirstPatternThatMatchesWinsAndItsFlagsStandUntilTheNextLookup) {
    configure(DESK_READER + "[card troppo lunga]\natr = 3BFF180000\nmodule = libno.so\n"
                            "[card altra]\natr = 3B.F19..\nmodule = libno.so\n"
                            "[card jolly]\natr = 3b:xF:1?:.0\nmodule = libprima.so\nflags = cns touchsign\n"
                            "[card esatta]\natr = 3BFF1800\nmodule = libseconda.so\n");
    EXPECT_EQ(module("Scrivania"), "libprima.so");
    EXPECT_EQ(kvIsCNSINCARD(), 1);
    EXPECT_EQ(kvIsTOUCHSIGN(), 1);
    EXPECT_EQ(module("altro", nullptr, ZVC_ERR_NO_SERVICE), "");
    EXPECT_EQ(kvIsCNSINCARD(), 0);
    EXPECT_EQ(kvIsTOUCHSIGN(), 0);
}

TEST(Atr, APatternWithoutDigitsMatchesNothing) {
    const zvcrypt::PackedAtr none, atr("3BFF1800");
    EXPECT_FALSE(none.matches(atr) || none.matches(none) || atr.matches(none));
    EXPECT_TRUE(zvcrypt::PackedAtr("3B..1800").matches(atr));
}

// Hosts close the card from exit handlers, when what a library made later is destroyed already.
TEST_F(Lookup, AnExitHandlerMayCallAsBefore) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    configure(DESK_READER + "[card z]\natr = 3BFF1800\nmodule = un-modulo-dal-nome-piuttosto-lungo.so\n");
    static const auto call = [] {
        char reader[] = "Scrivania", module[ZVC_MODULE_NAME_SIZE], missing[] = "/non/esiste/questo-modulo.so";
        if (kvGetPKCS11FromATR(reader, module) != ZVC_OK || kvInitialize(missing, 0) != ZVC_ERR_MODULE_LOAD ||
            last_error().find(missing) == std::string::npos || kvFinalize() != ZVC_OK)
            ::_exit(3);
    };
    EXPECT_EXIT((std::atexit(call), call(), std::exit(0)), testing::ExitedWithCode(0), "");
}

TEST_F(Lookup, HostTableThenConfigurationThenBuiltInTable) {
    configure(CNS_READER + DESK_READER);
    EXPECT_EQ(module("A"), "opensc-pkcs11.so");
    EXPECT_EQ(kvIsCNSINCARD(), 1);
    EXPECT_EQ(module("Scrivania"), "") << "an unknown card is no failure";
    EXPECT_EQ(kvIsCNSINCARD(), 0);
    configure(CNS_READER + "[card c]\natr = " + CNS_ATR + "\nmodule = libconf.so\n");
    EXPECT_EQ(module("A"), "libconf.so");
    EXPECT_EQ(kvIsCNSINCARD(), 0);

    module("A", folder.c_str(), ZVC_ERR_CONFIG_FILE);
    write("atr.ini", "");
    EXPECT_EQ(module("A", folder.c_str()), "libconf.so");
    write("atr.ini", "[card c]\natr = " + CNS_ATR + "\nmodule = libhost.so\n");
    EXPECT_EQ(module("A", folder.c_str()), "libhost.so");
    EXPECT_EQ(module("A"), "libconf.so");
    write("atr.ini", DESK_READER);
    module("A", folder.c_str(), ZVC_ERR_CONFIG);
}

TEST_F(Lookup, TheSampleChangesNothingBeforeItsEntriesAreUncommented) {
    const std::string sample = content(SAMPLE_CONFIGURATION);
    configure(sample);
    EXPECT_EQ(readers(ZVC_ERR_NO_SERVICE), "");
    configure(std::regex_replace(sample, std::regex("\n;(?! )"), "\n"));
    EXPECT_EQ(readers(), "Desk Reader [contact] 00 00|");
    EXPECT_EQ(module("Desk Reader [contact] 00 00"), "libmaker-pkcs11.so");
    EXPECT_EQ(kvIsCNSINCARD(), 1);
}

TEST_F(Lookup, TheCardsOfTheDocumentedListAreFoundAsItSays) {
    const std::regex row(R"(\| `([0-9A-F ]+)` \|[^|]*\| ([^|]*) \|\n)");
    const std::string page = content(CARDS_PAGE);
    int known = 0, unknown = 0;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        const std::string state = (*it)[2];
        configure("[reader A]\natr = " + (*it)[1].str() + "\n");
        const std::string expected = state.find("OpenSC") == 0 ? "opensc-pkcs11.so" : "";
        EXPECT_EQ(module("A"), expected) << it->str();
        EXPECT_EQ(kvIsCNSINCARD() != 0, state == "OpenSC, CNS") << it->str();
        ++(expected.empty() ? unknown : known);
    }
    EXPECT_GE(known, 35);
    EXPECT_GE(unknown, 10);
}

TEST_F(Lookup, AChangedFileIsReadAgain) {
    const auto long_ago = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
    for (const char* name : {"libuno.so", "libdue.so"}) {
        configure(DESK_READER + "[card z]\natr = 3BFF1800\nmodule = " + name + "\n");
        std::filesystem::last_write_time(path("zvcrypt.conf"), long_ago);
        EXPECT_EQ(module("Scrivania"), name) << "though path, size and date are the same";
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // a clock tick at least
    }
}

TEST_F(Lookup, AMalformedLineIsNamed) {
    const std::string card = "[card a]\natr = 3B00\n";
    const std::pair<std::string, const char*> cases[] = {
        {"atr = 3B00", "riga 1:"},
        {card + "module = a.so\n\n[card b", "riga 5:"},
        {"[card a] atr = 3B00", "riga 1:"},
        {"[carta a]\n", "riga 1: sezione sconosciuta"},
        {"[card]\n", "riga 1:"},
        {"[card a]\natr 3B00\n", "riga 2:"},
        {"[card a]\nATR = 3B00\n", "riga 2: chiave sconosciuta"},
        {card + "atr = 3B00\n", "riga 3: chiave ripetuta"},
        {"[card a]\natr = 3B0\n", "riga 2: ATR"},
        {"[card a]\natr = 3BZ0\n", "riga 2: ATR"},
        {card + "[card b]\n", "riga 1: "},
        {card + "module = /usr/lib/a.so\n", "riga 3: nome di modulo"},
        {card + "module = a.so\nflags = cns firma\n", "riga 4: indicatore sconosciuto: firma"},
        {"[reader a]\natr = 3B..\n", "riga 2: ATR"},
        {"[reader a]\nname = a|b\n", "riga 2: nome di lettore"},
        {"[reader a]\natr = 3B00\n[reader b]\nname = a\natr = 3B00\n", "riga 3: lettore ripetuto"},
        {std::string(400, '\0'), "riga 1: non è una riga di testo"}, // what a power failure leaves
        {card + "# " + std::string(400, '-') + "\n", "riga 3: riga di più di"},
    };
    for (const auto& [text, reason] : cases) {
        configure(text);
        readers(ZVC_ERR_CONFIG);
        EXPECT_NE(last_error().find(path("zvcrypt.conf, ") + reason), std::string::npos)
            << text << last_error();
    }
}

TEST_F(Lookup, TheConfigurationIsTheFirstFileThatExists) {
    for (const char* name : {".config", "xdg"}) {
        std::filesystem::create_directories(folder / name);
        write(std::string(name) + "/zvcrypt.conf", std::string("[reader ") + name + "]\natr = 3B00\n");
    }
    ::unsetenv("ZVCRYPT_CONF");
    EXPECT_EQ(readers(), ".config|");
    ::setenv("XDG_CONFIG_HOME", path("xdg").c_str(), 1);
    EXPECT_EQ(readers(), "xdg|");
    configure(DESK_READER);
    EXPECT_EQ(readers(), "Scrivania|");
    for (const std::string& unreadable : {path("missing"), folder.string()}) {
        ::setenv("ZVCRYPT_CONF", unreadable.c_str(), 1);
        readers(ZVC_ERR_CONFIG_FILE);
    }
}
