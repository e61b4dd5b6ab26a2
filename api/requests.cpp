// A request of an entry point: command, signed file, base64 text.
#include "api/requests.h"

#include "api/dn_input.h"
#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/request_files.h"
#include "api/state.h"
#include "card/crypto_session.h"
#include "card/detection.h"
#include "diag/log.h"
#include "store/keep_flag.h"
#include "util/text.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <unistd.h>

namespace zv {

namespace {

constexpr std::size_t DN_SIZE = 4096;

// The PKCS#10 request, made by the command, in szBufferDatiOut.
int make_request(const Request& request) {
    const RequestCall call = {trim_right(request.pending_label), trim_right(request.key_id), request.subject,
                              request.kind, request.discard_pending};
    int code = guard_request(call);
    if (code == 0) code = guard_subject(call);
    if (code == 0)
        code = run_command("REQREN", {request.key_id, request.pin, "", request.pending_label,
                                      kind_row(request.kind).code,
                                      request.discard_pending ? KEEP_NOTHING : KEEP_PENDING_PAIR});
    if (code != 0) return fail_command(code);
    write_line("OUTPUT DA MININFO:");
    write_line(szBufferDatiOut);
    return 0;
}

int lost_request_file() {
    return fail("Funzione fopen() error!", ZV_UNSUPPORTED, "Primo File temporaneo non trovato");
}

// The crypto library's own session signs the file with the key in use.
int sign_request(const Request& request, const RequestFile& file) {
    int code = open_crypto_session(Libreria, request.pin);
    if (code != 0) return fail("Funzione DoInitialize() error!", code);
    char line[320] = "Richiesta firma con chiave CKA_ID: ";
    append_text(line, request.key_id);
    write_line(line);
    const bool ours_before = file.is_ours();
    code = ours_before ? kvSignFile(request.key_id, "SHA256", REQUEST_FILE, SIGNED_FILE) : 0;
    if (code != 0) return fail("Funzione kvSignFile() error!", code);
    if (!ours_before || !file.is_ours()) {
        close_crypto_session();
        return lost_request_file();
    }
    write_line("Funzione 'kvSignFile()' completata con successo");
    code = close_crypto_session();
    return code == 0 ? 0 : fail("Funzione DoFinalize() error!", code);
}

int read_base64(char (&result)[ZV_REQUEST_SIZE]) {
    char from[sizeof SIGNED_FILE], to[sizeof BASE64_FILE];
    copy_text(from, SIGNED_FILE);
    copy_text(to, BASE64_FILE);
    if (const int code = kvFileToBase64(from, to, "e")) return fail("Funzione kvFileToBase64() error!", code);
    const int descriptor = open_base64();
    if (descriptor < 0)
        return fail("Funzione fopen() error!", ZV_UNSUPPORTED, "File appoggio B64 non trovato");
    const std::size_t length = read_all(descriptor, result, sizeof result - 1);
    ::close(descriptor);
    if (length == 0) return fail("Funzione fread() error!", ZV_UNSUPPORTED, "Errore nella lettura file B64");
    return 0;
}

} // namespace

int create_request(Request request, char* request_out) {
    if (request.kind == Kind::authentication && request.key_id == OWN_PAIR) request.kind = Kind::services;
    clear(szBuffErr, szBufferRichiesta, szBufferDatiOut);
    char result[ZV_REQUEST_SIZE] = {};
    trace_entry(request.function, "': INIZIO");
    trace_module("Libreria pkcs#11 selezionata: ");
    char name[DN_SIZE];
    copy_text(name, request.subject);
    take_subject(name);
    if (const int code = make_request(request)) return code;

    RequestFile file;
    if (!file.create(szBufferDatiOut)) return lost_request_file();
    if (const int code = sign_request(request, file)) return code;
    if (const int code = read_base64(result)) return code;
    // The signed file is ours only if nobody took the request's name since.
    if (!file.is_ours()) return lost_request_file();
    char line[128] = "OUTPUT dalla funzione '";
    append_text(line, request.function);
    append_text(line, "':");
    write_line(line);
    write_line(result);
    copy_text(request_out, ZV_REQUEST_SIZE, result);
    if (request_out != nullptr) request_out[ZV_REQUEST_SIZE - 1] = '\0';
    trace_entry(request.function, "' corretamente Eseguita");
    remove_request_files();
    return 0;
}

} // namespace zv
