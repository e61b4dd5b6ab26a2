// The installation of an entry point.
#include "api/installing.h"

#include "api/dn_input.h"
#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/state.h"
#include "diag/log.h"
#include "store/keep_flag.h"
#include "util/text.h"
#include "util/trim.h"
#include "zvRenew.h"

#include <cstring>
#include <string>

namespace zv {

namespace {

// The command block has one line for the certificate.
std::string without_line_breaks(const char* text) {
    std::string line(text);
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return line;
}

int install(const Installation& installation) {
    const std::string certificate = without_line_breaks(installation.cert_chain);
    const InstallCall call = {trim_right(installation.pending_label), installation.cert_label,
                              installation.kind, certificate.c_str(), !installation.keep_old};
    if (const int stopped = guard_install(call)) return stopped;
    return run_command("REQSCA", {installation.cert_label, installation.pin, certificate.c_str(),
                                  installation.pending_label, kind_row(installation.kind).code,
                                  installation.keep_old ? KEEP_REPLACED : KEEP_NOTHING});
}

void begin(const Installation& installation) {
    clear(szBuffErr, szBufferRichiesta);
    trace_entry(installation.function, "': INIZIO");
    trace_module("Libreria pkcs#11 selezionata: ");
    clear_subject();
}

int finish(const Installation& installation, int code) {
    if (code != 0) return fail_command(code);
    write_line("OUTPUT DA MININFO:");
    write_line(szBufferDatiOut);
    trace_entry(installation.function, "' corretamente Eseguita");
    return 0;
}

// An empty label, also in the host's buffer, is the card's first one.
void settle_label(char* cert_label, const char* first) {
    strip_right(cert_label);
    if (cert_label[0] == '\0') std::strcpy(cert_label, first);
}

} // namespace

int install_certificate(Installation installation) {
    char no_label[ZV_KEY_ID_SIZE] = "";
    if (installation.cert_label == nullptr) installation.cert_label = no_label;
    begin(installation);
    settle_label(installation.cert_label, kind_row(installation.kind).first_id);
    if (installation.kind == Kind::authentication && installation.cert_label == OWN_PAIR)
        installation.kind = Kind::services;
    return finish(installation, install(installation));
}

} // namespace zv
