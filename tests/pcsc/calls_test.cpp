// What no real service does when a test wants it: this program's own PC/SC functions answer in its place.
#include "zvCrypt.h"

#include <gtest/gtest.h>
#include <winscard.h>

#include <cstring>

namespace {

const char* failing = ""; // this function fails so many times, with this code
int times = 0, contexts = 0;
LONG code = 0;
std::string names("One\0Two\0\0", 9);

LONG result(const char* function) {
    return std::strcmp(failing, function) == 0 && times-- > 0 ? code : SCARD_S_SUCCESS;
}

std::string list() {
    char text[ZVC_READER_LIST_SIZE] = "?", reason[512] = "";
    return kvGetReader(text) == ZVC_OK ? text : (kvLastError(reason, sizeof reason), reason);
}

} // namespace

#pragma GCC visibility push(default)
LONG SCardEstablishContext(DWORD, LPCVOID, LPCVOID, LPSCARDCONTEXT context) {
    return *context = ++contexts, SCARD_S_SUCCESS;
}
LONG SCardReleaseContext(SCARDCONTEXT) {
    return --contexts, SCARD_S_SUCCESS;
}
LONG SCardListReaders(SCARDCONTEXT, LPCSTR, LPSTR text, LPDWORD size) {
    if (text != nullptr) std::memcpy(text, names.data(), *size);
    *size = static_cast<DWORD>(names.size());
    return result(text == nullptr ? "size" : "list");
}
LONG SCardGetStatusChange(SCARDCONTEXT, DWORD, SCARD_READERSTATE* states, DWORD count) {
    states[count - 1].dwEventState = SCARD_STATE_PRESENT;
    states[count - 1].cbAtr = 4000;
    return result("state");
}
#pragma GCC visibility pop

TEST(PcscCalls, WhatTheNextCallOutdatesIsAskedForAgain) {
    const std::tuple<const char*, LONG, const char*> cases[] = {
        {"list", SCARD_E_INSUFFICIENT_BUFFER, "Errore 0x80100008 del servizio PC/SC in SCardListReaders"},
        {"state", SCARD_E_UNKNOWN_READER, "Errore 0x80100009 del servizio PC/SC in SCardGetStatusChange"},
        {"size", SCARD_F_COMM_ERROR,
         "Il servizio PC/SC dei lettori di smart card non è attivo o non risponde"}};
    for (const auto& [function, failure, reason] : cases) {
        failing = function, code = failure, times = 2;
        EXPECT_EQ(list(), "Two|One|") << function;
        times = 3;
        EXPECT_EQ(list(), reason);
    }
    failing = "list", code = SCARD_E_NO_READERS_AVAILABLE, times = 1;
    EXPECT_EQ(list(), "") << "unplugged between two calls";
    code = SCARD_E_NO_MEMORY, times = 1;
    EXPECT_EQ(list(), "Errore 0x80100006 del servizio PC/SC in SCardListReaders") << "once is enough";
    EXPECT_EQ(contexts, 0);
}

TEST(PcscCalls, NothingIsReadPastItsEnd) {
    failing = "";
    char reader[] = "Two", module[ZVC_MODULE_NAME_SIZE] = "?";
    ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
    EXPECT_EQ(kvGetPKCS11FromATR(reader, module), ZVC_OK) << "the ATR claims 4000 bytes";
    names = "One";
    EXPECT_EQ(list(), "One|") << "without an end";
    names = std::string(1023, 'x');
    EXPECT_EQ(list(), "") << "too long for the list";
}
