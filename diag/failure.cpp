#include "diag/failure.h"

#include "diag/report.h"
#include "util/text.h"

#include <cstdio>

char szSockMsg[ZV_MESSAGE_SIZE];

namespace zv {

const Failure& Failure::step(const char* name, CK_RV code) const {
    report_code(title_, name, code);
    return *this;
}

const Failure& Failure::sentence(const char* text) const {
    report_sentence(text);
    return *this;
}

const Failure& Failure::sentence(const char* format, CK_RV code) const {
    report_sentence(format, code);
    return *this;
}

const Failure& Failure::user(const char* format, const char* text) const {
    (void)std::snprintf(szSockMsg, sizeof szSockMsg, format, or_empty(text));
    return *this;
}

const Failure& Failure::user(const char* format, CK_RV code) const {
    (void)std::snprintf(szSockMsg, sizeof szSockMsg, format, code);
    return *this;
}

} // namespace zv
