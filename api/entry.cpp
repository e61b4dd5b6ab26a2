#include "api/entry.h"

#include <algorithm>
#include <cstring>

#include "api/state.h"
#include "card/detection.h"
#include "util/text.h"
#include "zvCrypt.h"

namespace zv {

void traceModule(const char* prefix) {
    copyText(szBuffErr, prefix);
    appendText(szBuffErr, Libreria);
    scriviLog(szBuffErr);
    szBuffErr[0] = '\0';
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

int failWithReason(const char* line, int code) {
    kvLastError(szBuffErr, sizeof szBuffErr);
    szBuffErr[sizeof szBuffErr - 1] = '\0';
    return fail(line, code);
}

void wipePin() {
    static constexpr char KEY[] = "\nszpin:";
    char* pin = std::strstr(szBufferRichiesta, KEY);
    if (pin == nullptr) return;
    pin += std::strlen(KEY);
    std::fill_n(pin, std::strcspn(pin, "\n"), '*');
}

} // namespace zv
