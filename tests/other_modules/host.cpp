// A host of one call: host MODULE PIN KEEP VERB..., in a folder with the crypto library's configuration. It reads the card
// first, as every host does. Prints what the call gave, or the result and the texts for the user and exits with 1. The PIN
// "-" comes from standard input: this host then keeps no copy of it.
#include "tests/support/host.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

extern "C" char* getLogPath(void);

namespace {

using Arguments = std::vector<std::string>;

char pin[64];

int find_free() {
    char key_pra[ZV_KEY_ID_SIZE] = "", key_aut[ZV_KEY_ID_SIZE] = "";
    const int result = rinnovo_Card_findFreeCKAID(nullptr, pin, key_pra, key_aut);
    std::cout << key_pra << ' ' << key_aut;
    return result;
}

// request PENDING SIGNER DISCARD: with the subject of the signer's certificate, into the file "request".
int request(Arguments at, zvtest::Reading card) {
    const bool signature = at[5].starts_with("DS");
    if (signature) card.cns.clear();
    std::vector<char> out(ZV_REQUEST_SIZE);
    const auto make = signature ? rinnovo_Card_createCertRequestPRA : rinnovo_Card_createCertRequestAUT;
    const int result =
        make(out.data(), at[4].c_str(), pin, at[5].data(), card.subject().c_str(), at[6] == "discard");
    std::ofstream("request") << out.data();
    return result;
}

// install LABEL PENDING FILE KEEP
int install(Arguments at) {
    std::ifstream file(at[6]);
    std::string chain(std::istreambuf_iterator<char>(file), {});
    const auto save = at[4].starts_with("DS") ? rinnovo_Card_saveCertPRA : rinnovo_Card_saveCertAUT;
    at[4].resize(ZV_KEY_ID_SIZE);
    return save(pin, at[4].data(), at[5].data(), chain.data(), at[7] == "keep");
}

// Numbers of certificates for CNS, PRA and AUT, what is pending, and the two identifiers.
void print(const zvtest::Reading& card) {
    std::cout << card.cns.size() << card.pra.size() << card.aut.size()
              << (card.pending_cns == 1 ? " CNS" : "") << (card.pending_pra == 1 ? " PRA" : "") << ' '
              << card.key_pra << ' ' << card.key_aut;
}

} // namespace

int main(int argc, char** argv) {
    const Arguments at(argv + 1, argv + argc);
    std::snprintf(getLogPath(), 513, "log");
    loadErrorCodes();
    if (at[2] == "-kept") (void)::dlopen(at[0].c_str(), RTLD_NOW);
    at[1].copy(pin, sizeof pin - 1);
    if (at[1] == "-" && ::read(0, pin, sizeof pin - 1) <= 0) return 2;
    const auto card = zvtest::read_card(nullptr, pin, std::filesystem::path(at[0]).parent_path());
    int result = card.result;
    if (result == 0 && at[3] == "read") print(card);
    if (result == 0 && at[3] == "free") result = find_free();
    if (result == 0 && at[3] == "request") result = request(at, card);
    if (result == 0 && at[3] == "install") result = install(at);
    std::fill_n(static_cast<volatile char*>(pin), sizeof pin, '\0');
    std::raise(SIGURG); // where a tracer looks; ignored without one
    if (result == 0) return 0;
    std::printf(result < 10 ? "result %d" : "result 0x%X", result);
    std::printf(", szBuffErr \"%s\"%s%s", szBuffErr, *szSockMsg ? ", szSockMsg " : "", szSockMsg);
    return 1;
}
