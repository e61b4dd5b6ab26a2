#include "diag/report.h"

#include "diag/log.h"
#include "diag/messages.h"
#include "util/numbers.h"
#include "util/text.h"

#include <cstdio>

namespace zv {

namespace {

Datum whole(const char* text) {
    return text != nullptr ? Datum(text) : std::nullopt;
}

} // namespace

void trace(const char* title, const char* step, const char* datum) {
    write_entry(title, whole(step), whole(datum));
}

void trace_session(const char* title, const char* step, CK_SESSION_HANDLE session) {
    trace(title, step, with_hex("hSession = ", static_cast<long>(session)));
}

void trace_found(const char* title, CK_OBJECT_HANDLE object, CK_ULONG count) {
    const auto handle = with_hex("hObject", static_cast<long>(object));
    trace(title, handle, with_hex("count = ", static_cast<long>(count)));
}

void report_code(const char* title, const char* step, CK_RV code) {
    trace(title, step, with_hex("Errore = ", static_cast<long>(code)));
}

void report_sentence(const char* sentence) {
    trace("Messaggio di Errore", sentence);
}

void report_sentence(const char* format, CK_RV code) {
    Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, format, error_message(code));
    report_sentence(sentence);
}

void report_failure(const char* title, const char* step, CK_RV code, const char* format) {
    report_code(title, step, code);
    report_sentence(format, code);
}

void report_not_sent(const char* reason) {
    char line[640] = "Operazione non inviata: ";
    append_text(line, reason);
    write_line(line);
}

} // namespace zv
