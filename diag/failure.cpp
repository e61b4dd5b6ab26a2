#include "diag/failure.h"

#include <cstdio>

#include "diag/log.h"
#include "util/text.h"

char szSockMsg[512];

namespace zv {

const Failure& Failure::step(const char* name, CK_RV code) const {
    reportCode(title_, name, code);
    return *this;
}

const Failure& Failure::sentence(const char* text) const {
    reportSentence(text);
    return *this;
}

const Failure& Failure::sentence(const char* format, CK_RV code) const {
    reportSentence(format, code);
    return *this;
}

const Failure& Failure::user(const char* format, const char* text) const {
    (void)std::snprintf(szSockMsg, sizeof szSockMsg, format, orEmpty(text));
    return *this;
}

const Failure& Failure::user(const char* format, CK_RV code) const {
    (void)std::snprintf(szSockMsg, sizeof szSockMsg, format, code);
    return *this;
}

} // namespace zv
