// Entry points that install an issued certificate.
#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/state.h"
#include "diag/log.h"
#include "routines/api.h"
#include "store/keep_flag.h"
#include "util/guarded.h"
#include "util/text.h"
#include "util/trim.h"

#include <cstring>
#include <string>

namespace {

struct Installation {
    const char* function; // name of the entry point, for the log
    zv::Kind kind;
    char* cert_label;
    char* pending_label;
    const char* pin;
    std::string certificate;
    bool keep_old;
};

int install(const Installation& installation) {
    const char* certificate = installation.certificate.c_str();
    const zv::InstallCall call = {zv::trim_right(installation.pending_label), installation.cert_label,
                                  installation.kind, certificate, !installation.keep_old};
    if (const int stopped = zv::guard_install(call)) return stopped;
    return zv::run_command("REQSCA", {installation.cert_label, installation.pin, certificate,
                                      installation.pending_label, zv::kind_row(installation.kind).code,
                                      installation.keep_old ? zv::KEEP_REPLACED : zv::KEEP_NOTHING});
}

// The command block has one line for the certificate.
std::string without_line_breaks(const char* text) {
    std::string line(zv::or_empty(text));
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return line;
}

void begin(const Installation& installation) {
    zv::clear(szBuffErr, zv::szBufferRichiesta);
    zv::trace_entry(installation.function, "': INIZIO");
    zv::trace_module("Libreria pkcs#11 selezionata: ");
    ResettaDN();
}

int finish(const Installation& installation, int code) {
    if (code != 0) return zv::fail_command(code);
    zv::write_line("OUTPUT DA MININFO:");
    zv::write_line(zv::szBufferDatiOut);
    zv::trace_entry(installation.function, "' corretamente Eseguita");
    return 0;
}

// An empty label, also in the host's buffer, is the card's first one.
void settle_label(char* cert_label, const char* first) {
    zv::strip_right(cert_label);
    if (cert_label[0] == '\0') std::strcpy(cert_label, first);
}

int install_certificate(Installation&& installation, bool may_be_own, const char* cert_chain) {
    return zv::guarded(zv::command_without_memory, [&] {
        begin(installation);
        settle_label(installation.cert_label, zv::kind_row(installation.kind).first_id);
        if (may_be_own && installation.cert_label == zv::OWN_PAIR) installation.kind = zv::Kind::services;
        installation.certificate = without_line_breaks(cert_chain);
        return finish(installation, install(installation));
    });
}

} // namespace

int rinnovo_Card_saveCertPRA(char* pin, char* cert_label, char* pending_label, char* cert_chain,
                             bool keep_old) {
    char no_label[ZV_KEY_ID_SIZE] = "", no_pending[] = "";
    return install_certificate({"rinnovo_Card_saveCertPRA",
                                zv::Kind::signature,
                                cert_label != nullptr ? cert_label : no_label,
                                pending_label != nullptr ? pending_label : no_pending,
                                zv::or_empty(pin),
                                {},
                                keep_old},
                               false, cert_chain);
}

int rinnovo_Card_saveCertAUT(char* pin, char* cert_label, char* pending_label, char* cert_chain,
                             bool keep_old) {
    char no_label[ZV_KEY_ID_SIZE] = "", no_pending[] = "";
    return install_certificate({"rinnovo_Card_saveCertAUT",
                                zv::Kind::authentication,
                                cert_label != nullptr ? cert_label : no_label,
                                pending_label != nullptr ? pending_label : no_pending,
                                zv::or_empty(pin),
                                {},
                                keep_old},
                               true, cert_chain);
}
