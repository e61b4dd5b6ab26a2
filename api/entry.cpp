#include "api/entry.h"

#include "api/commands.h"
#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "diag/log.h"
#include "util/text.h"
#include "zvCrypt.h"
#include "zvRenew.h"

namespace zv {

void trace_module(const char* prefix) {
    copy_text(szBuffErr, prefix);
    append_text(szBuffErr, Libreria);
    write_line(szBuffErr);
    clear(szBuffErr);
}

void fetch_reason() {
    kvLastError(szBuffErr, sizeof szBuffErr);
    szBuffErr[sizeof szBuffErr - 1] = '\0';
}

int fail(const char* line, int code, const char* text) {
    if (text != nullptr)
        copy_text(szBuffErr, text);
    else
        fetch_reason();
    write_line(szBuffErr);
    write_line(line);
    return code;
}

void trace_entry(const char* function, const char* after) {
    char line[128] = "Funzione '";
    append_text(line, function);
    append_text(line, after);
    write_line(line);
}

int run_command(std::string_view command, const BlockValues& values) {
    const WrittenBlock block = write_block(values);
    int code = guard_block(values);
    if (code == 0) code = run_block(command, szBufferRichiesta, szBufferDatiOut);
    wipe_pin(block);
    return code;
}

int fail_command(int code) {
    return fail("Funzione miExecCmd() error!", code, "Errore nella mininfo");
}

int command_without_memory() {
    return fail_command(ZV_UNUSABLE);
}

} // namespace zv
