// Entry points that store an issued certificate.
#include <algorithm>
#include <cstring>
#include <string>

#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/state.h"
#include "util/text.h"

namespace {

constexpr char NOT_SENT[] = "Errore nella mininfo";
constexpr char COMMAND_FAILED[] = "Funzione miExecCmd() error!";

struct Storing {
    const char* function; // name of the entry point, for the log
    const char* kind;
    char* certLabel;
    char* pendingLabel;
    const char* pin;
    std::string certificate;
    bool keepOld;

    void trace(const char* after) const;
};

void Storing::trace(const char* after) const {
    char line[128] = "Funzione '";
    zv::appendText(line, function);
    zv::appendText(line, after);
    scriviLog(line);
}

int store(const Storing& storing) {
    const char* keepFlag = storing.keepOld ? "R" : "D";
    const zv::StoringCall call = {
        zv::trimRight(storing.pendingLabel), storing.pin,     storing.certLabel, storing.kind,
        storing.certificate.c_str(),         !storing.keepOld};
    if (const int stopped = zv::guardStoring(call)) return stopped;
    const char* certificate = storing.certificate.c_str();
    RichiestaMinInfo(storing.certLabel, storing.pin, certificate, storing.pendingLabel, storing.kind,
                     keepFlag);
    int code = zv::guardBlock(storing.certLabel, storing.pin, certificate, storing.pendingLabel, storing.kind,
                              keepFlag);
    if (code == 0) {
        long length = sizeof zv::szBufferDatiOut;
        code = miExecCmd("REQSCA", zv::szBufferRichiesta,
                         static_cast<long>(std::strlen(zv::szBufferRichiesta)), zv::szBufferDatiOut, &length);
    }
    zv::wipePin();
    return code;
}

// The command block has one line for the certificate.
std::string withoutLineBreaks(const char* text) {
    std::string line(zv::orEmpty(text));
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return line;
}

void begin(const Storing& storing) {
    std::fill(std::begin(szBuffErr), std::end(szBuffErr), '\0');
    std::fill(std::begin(zv::szBufferRichiesta), std::end(zv::szBufferRichiesta), '\0');
    storing.trace("': INIZIO");
    zv::traceModule("Libreria pkcs#11 selezionata: ");
    ResettaDN();
}

int finish(const Storing& storing, int code) {
    if (code != 0) return zv::failWith(NOT_SENT, COMMAND_FAILED, code);
    scriviLog("OUTPUT DA MININFO:");
    scriviLog(zv::szBufferDatiOut);
    storing.trace("' corretamente Eseguita");
    return 0;
}

// An empty label, also in the host's buffer, is the card's first one.
void settleLabel(char* certLabel, const char* first) {
    RTrim(certLabel);
    if (certLabel[0] == '\0') std::strcpy(certLabel, first);
}

int save(Storing&& storing, const char* firstLabel, bool mayBeCNS, const char* certChain) try {
    begin(storing);
    settleLabel(storing.certLabel, firstLabel);
    if (mayBeCNS && std::strcmp(storing.certLabel, "CNS0") == 0) storing.kind = "CNS";
    storing.certificate = withoutLineBreaks(certChain);
    return finish(storing, store(storing));
} catch (const std::exception&) {
    return zv::failWith(NOT_SENT, COMMAND_FAILED, ZV_UNUSABLE);
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
