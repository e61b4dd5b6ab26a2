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

int fail(const char* line, int code) {
    scriviLog(szBuffErr);
    scriviLog(line);
    return code;
}

int failWith(const char* text, const char* line, int code) {
    copyText(szBuffErr, text);
    return fail(line, code);
}

void fetchReason() {
    kvLastError(szBuffErr, sizeof szBuffErr);
    szBuffErr[sizeof szBuffErr - 1] = '\0';
}

int failWithReason(const char* line, int code) {
    fetchReason();
    return fail(line, code);
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
    return failWith("Errore nella mininfo", "Funzione miExecCmd() error!", code);
}

} // namespace zv
