#include "api/entry.h"

#include <cstring>

#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "util/text.h"
#include "zvCrypt.h"

namespace zv {

void traceModule(const char* prefix) {
    copyText(szBuffErr, prefix);
    appendText(szBuffErr, Libreria);
    scriviLog(szBuffErr);
    clear(szBuffErr);
}

void fetchReason() {
    kvLastError(szBuffErr, sizeof szBuffErr);
    szBuffErr[sizeof szBuffErr - 1] = '\0';
}

int fail(const char* line, int code, const char* text) {
    if (text != nullptr)
        copyText(szBuffErr, text);
    else
        fetchReason();
    scriviLog(szBuffErr);
    scriviLog(line);
    return code;
}

void traceEntry(const char* function, const char* after) {
    char line[128] = "Funzione '";
    appendText(line, function);
    appendText(line, after);
    scriviLog(line);
}

int runCommand(const char* command, const BlockValues& values) {
    // The writer's parameters are not const, though it only reads them.
    RichiestaMinInfo(const_cast<char*>(values.certLabel), values.pin, values.certificate,
                     const_cast<char*>(values.pendingLabel), values.kind, values.keepFlag);
    int code = guardBlock(values);
    if (code == 0) {
        long length = sizeof szBufferDatiOut;
        code = miExecCmd(command, szBufferRichiesta, static_cast<long>(std::strlen(szBufferRichiesta)),
                         szBufferDatiOut, &length);
    }
    wipePin();
    return code;
}

int failCommand(int code) {
    return fail("Funzione miExecCmd() error!", code, "Errore nella mininfo");
}

int commandWithoutMemory() {
    return failCommand(ZV_UNUSABLE);
}

} // namespace zv
