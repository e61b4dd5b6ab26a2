#include "certificates.h"
#include "scratch.h"

namespace {

using test::lastError;

class Lookup : public test::Scratch {
  protected:
    void configure(const std::string& text) {
        ::setenv("ZVCRYPT_CONF", write("zvcrypt.conf", text).c_str(), 1);
    }

    int readers(int expected = ZVC_OK) {
        char text[ZVC_READER_LIST_SIZE + 1];
        text[ZVC_READER_LIST_SIZE] = 'x';
        const int code = kvGetReader(text);
        EXPECT_EQ(code, expected) << lastError();
        EXPECT_EQ(text[ZVC_READER_LIST_SIZE], 'x');
        list = text;
        return code;
    }
    // With a folder its atr.ini is asked too.
    std::string module(std::string reader, const char* iniDir = nullptr, int expected = ZVC_OK) {
        char text[ZVC_MODULE_NAME_SIZE] = "x";
        const int code = iniDir == nullptr ? kvGetPKCS11FromATR(reader.data(), text)
                                           : kvGetPKCS11FromATRLite(reader.data(), text, iniDir);
        EXPECT_EQ(code, expected) << lastError();
        return text;
    }

    std::string list;
};

constexpr const char* deskReader = "[reader Scrivania]\natr = 3BFF1800\n";

} // namespace

TEST_F(Lookup, WithoutServiceThereAreTheSoftwareReadersOrAReason) {
    readers(ZVC_ERR_NO_SERVICE);
    EXPECT_EQ(list, "");
    EXPECT_NE(lastError().find("PC/SC"), std::string::npos);
    configure("[reader uno]\nname = Lettore [CCID] 00 00 ; il nome ha le parentesi\natr = 3b 00\n"
              "# commento\n  [reader due]  ; indentato\n\tatr = 3F:00\r\n");
    readers();
    EXPECT_EQ(list, "Lettore [CCID] 00 00|due|");
    EXPECT_EQ(lastError(), "");
    module("tre", nullptr, ZVC_ERR_NO_SERVICE);
}

TEST_F(Lookup, TheListHoldsWholeNamesOnly) {
    std::string text;
    for (char c = 'a'; c < 'k'; ++c)
        text += std::string("[reader ") + std::string(120, c) + "]\natr = 3B00\n";
    configure(text);
    readers();
    EXPECT_EQ(list.size(), 8U * 121);
    EXPECT_EQ(list.back(), '|');
}

TEST_F(Lookup, TheFirstPatternThatMatchesWins) {
    configure(std::string(deskReader) +
              "[card troppo lunga]\natr = 3BFF180000\nmodule = libno.so\n"
              "[card altra]\natr = 3B.F19..\nmodule = libno.so\n"
              "[card jolly]\natr = 3b:xF:1?:.0\nmodule = libprima.so\nflags = cns touchsign\n"
              "[card esatta]\natr = 3BFF1800\nmodule = libseconda.so\n");
    EXPECT_EQ(module("Scrivania"), "libprima.so");
    EXPECT_EQ(kvIsCNSINCARD(), 1);
    EXPECT_EQ(kvIsTOUCHSIGN(), 1);
}

TEST_F(Lookup, HostTableThenConfigurationThenBuiltInTable) {
    const std::string cns = "3BFF1800008131FE45006B04050100012101434E5310318059";
    configure("[reader A]\natr = " + cns + "\n" + deskReader);
    EXPECT_EQ(module("A"), "opensc-pkcs11.so");
    EXPECT_EQ(kvIsCNSINCARD(), 1);
    EXPECT_EQ(module("Scrivania"), "") << "an unknown card is no failure";
    EXPECT_EQ(kvIsCNSINCARD(), 0);

    configure("[reader A]\natr = " + cns + "\n[card c]\natr = " + cns + "\nmodule = libconf.so\n");
    EXPECT_EQ(module("A"), "libconf.so");
    EXPECT_EQ(kvIsCNSINCARD(), 0);

    module("A", folder.c_str(), ZVC_ERR_CONFIG_FILE);
    write("atr.ini", "");
    EXPECT_EQ(module("A", folder.c_str()), "libconf.so");
    write("atr.ini", "[card c]\natr = " + cns + "\nmodule = libhost.so\nflags = touchsign\n");
    EXPECT_EQ(module("A", folder.c_str()), "libhost.so");
    EXPECT_EQ(kvIsTOUCHSIGN(), 1);
    EXPECT_EQ(module("A"), "libconf.so");
    EXPECT_EQ(kvIsTOUCHSIGN(), 0);
}

TEST_F(Lookup, AFailureLeavesNoFlagAndNoModule) {
    configure(std::string(deskReader) + "[card c]\natr = 3BFF1800\nmodule = lib.so\nflags = cns\n");
    ASSERT_EQ(module("Scrivania"), "lib.so");
    EXPECT_EQ(module("altro", nullptr, ZVC_ERR_NO_SERVICE), "");
    EXPECT_EQ(kvIsCNSINCARD(), 0);
    char text[512];
    EXPECT_EQ(kvGetPKCS11FromATR(nullptr, text), ZVC_ERR_ARGUMENT);
    EXPECT_EQ(kvGetReader(nullptr), ZVC_ERR_ARGUMENT);
}

TEST_F(Lookup, AMalformedLineIsNamed) {
    const std::pair<const char*, const char*> cases[] = {
        {"atr = 3B00", "riga 1:"},
        {"[card a]\natr = 3B00\nmodule = a.so\n\n[card b", "riga 5:"},
        {"[card a] atr = 3B00", "riga 1:"},
        {"[carta a]\n", "riga 1: sezione sconosciuta"},
        {"[card]\n", "riga 1:"},
        {"[card a]\natr 3B00\n", "riga 2:"},
        {"[card a]\nATR = 3B00\n", "riga 2: chiave sconosciuta"},
        {"[card a]\natr = 3B00\natr = 3B00\n", "riga 3: chiave ripetuta"},
        {"[card a]\natr = 3B0\n", "riga 2: ATR"},
        {"[card a]\natr = 3BZ0\n", "riga 2: ATR"},
        {"[card a]\natr = 3B00\n[card b]\n", "riga 1: "},
        {"[card a]\natr = 3B00\nmodule = /usr/lib/a.so\n", "riga 3: nome di modulo"},
        {"[card a]\natr = 3B00\nmodule = a.so\nflags = cns firma\n", "riga 4: indicatore sconosciuto: firma"},
        {"[reader a]\natr = 3B..\n", "riga 2: ATR"},
        {"[reader a]\nname = a|b\n", "riga 2: nome di lettore"},
        {"[reader a]\natr = 3B00\n[reader b]\nname = a\natr = 3B00\n", "riga 3: lettore ripetuto"},
    };
    for (const auto& [text, reason] : cases) {
        configure(text);
        EXPECT_EQ(readers(ZVC_ERR_CONFIG), ZVC_ERR_CONFIG) << text;
        EXPECT_NE(lastError().find(path("zvcrypt.conf") + ", " + reason), std::string::npos) << lastError();
    }
    configure("[reader a]\natr = 3B00\n# " + std::string(400, '-') + "\n");
    readers(ZVC_ERR_CONFIG);
    EXPECT_NE(lastError().find("riga 3: riga di più di"), std::string::npos) << lastError();
    configure(deskReader);
    write("atr.ini", deskReader);
    module("Scrivania", folder.c_str(), ZVC_ERR_CONFIG);
}

TEST_F(Lookup, TheConfigurationIsTheFirstFileThatExists) {
    std::filesystem::create_directories(folder / ".config");
    std::filesystem::create_directories(folder / "xdg");
    write(".config/zvcrypt.conf", "[reader home]\natr = 3B00\n");
    write("xdg/zvcrypt.conf", "[reader xdg]\natr = 3B00\n");
    ::unsetenv("ZVCRYPT_CONF");
    readers();
    EXPECT_EQ(list, "home|");
    ::setenv("XDG_CONFIG_HOME", path("xdg").c_str(), 1);
    readers();
    EXPECT_EQ(list, "xdg|");
    configure("[reader named]\natr = 3B00\n");
    readers();
    EXPECT_EQ(list, "named|");
    ::setenv("ZVCRYPT_CONF", path("missing").c_str(), 1);
    readers(ZVC_ERR_CONFIG_FILE);
    ::setenv("ZVCRYPT_CONF", folder.c_str(), 1);
    readers(ZVC_ERR_CONFIG_FILE);
}
