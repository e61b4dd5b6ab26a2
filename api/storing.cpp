// Entry points that store an issued certificate.
#include <cstring>
#include <string>

#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/state.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

struct Storing {
    const char* function; // name of the entry point, for the log
    const char* kind;
    char* certLabel;
    char* pendingLabel;
    const char* pin;
    std::string certificate;
    bool keepOld;
};

int store(const Storing& storing) {
    const char* certificate = storing.certificate.c_str();
    const zv::StoringCall call = {zv::trimRight(storing.pendingLabel), storing.certLabel, storing.kind,
                                  certificate, !storing.keepOld};
    if (const int stopped = zv::guardStoring(call)) return stopped;
    return zv::runCommand("REQSCA", {storing.certLabel, storing.pin, certificate, storing.pendingLabel,
                                     storing.kind, storing.keepOld ? "R" : "D"});
}

// The command block has one line for the certificate.
std::string withoutLineBreaks(const char* text) {
    std::string line(zv::orEmpty(text));
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return line;
}

void begin(const Storing& storing) {
    zv::clear(szBuffErr, zv::szBufferRichiesta);
    zv::traceEntry(storing.function, "': INIZIO");
    zv::traceModule("Libreria pkcs#11 selezionata: ");
    ResettaDN();
}

int finish(const Storing& storing, int code) {
    if (code != 0) return zv::failCommand(code);
    scriviLog("OUTPUT DA MININFO:");
    scriviLog(zv::szBufferDatiOut);
    zv::traceEntry(storing.function, "' corretamente Eseguita");
    return 0;
}

// An empty label, also in the host's buffer, is the card's first one.
void settleLabel(char* certLabel, const char* first) {
    RTrim(certLabel);
    if (certLabel[0] == '\0') std::strcpy(certLabel, first);
}

int save(Storing&& storing, const char* firstLabel, bool mayBeCNS, const char* certChain) {
    return zv::guarded(zv::commandWithoutMemory, [&] {
        begin(storing);
        settleLabel(storing.certLabel, firstLabel);
        if (mayBeCNS && std::strcmp(storing.certLabel, "CNS0") == 0) storing.kind = "CNS";
        storing.certificate = withoutLineBreaks(certChain);
        return finish(storing, store(storing));
    });
}

} // namespace

int rinnovo_Card_saveCertPRA(char* pin, char* certLabel, char* pendingLabel, char* certChain, bool keepOld) {
    char noLabel[32] = "", noPending[] = "";
    return save({"rinnovo_Card_saveCertPRA",
                 "PRA",
                 certLabel != nullptr ? certLabel : noLabel,
                 pendingLabel != nullptr ? pendingLabel : noPending,
                 zv::orEmpty(pin),
                 {},
                 keepOld},
                "DS0", false, certChain);
}

int rinnovo_Card_saveCertAUT(char* pin, char* certLabel, char* pendingLabel, char* certChain, bool keepOld) {
    char noLabel[32] = "", noPending[] = "";
    return save({"rinnovo_Card_saveCertAUT",
                 "AUT",
                 certLabel != nullptr ? certLabel : noLabel,
                 pendingLabel != nullptr ? pendingLabel : noPending,
                 zv::orEmpty(pin),
                 {},
                 keepOld},
                "AUTHCertificate0", true, certChain);
}
