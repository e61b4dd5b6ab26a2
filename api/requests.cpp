// Entry points that make a request: command, signed file, base64 text.
#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/request_files.h"
#include "api/state.h"
#include "card/detection.h"
#include "diag/log.h"
#include "routines/api.h"
#include "store/keep_flag.h"
#include "util/guarded.h"
#include "util/text.h"
#include "zvCrypt.h"

#include <unistd.h>

#include <cstring>
#include <string>

namespace {

constexpr std::size_t DN_SIZE = 4096;

struct Request {
    const char* function; // name of the entry point, for the log
    zv::Kind kind;
    char* pending_label;
    char* pin;
    char* key_id;
    const char* subject;
    bool discard_pending;
};

// The PKCS#10 request, made by the command, in szBufferDatiOut.
int make_request(const Request& request) {
    const zv::RequestCall call = {zv::trim_right(request.pending_label), zv::trim_right(request.key_id),
                                  request.subject, request.kind, request.discard_pending};
    int code = zv::guard_request(call);
    if (code == 0) code = zv::guard_subject(call);
    if (code == 0)
        code =
            zv::run_command("REQREN", {request.key_id, request.pin, "", request.pending_label,
                                       zv::kind_row(request.kind).code,
                                       request.discard_pending ? zv::KEEP_NOTHING : zv::KEEP_PENDING_PAIR});
    if (code != 0) return zv::fail_command(code);
    zv::write_line("OUTPUT DA MININFO:");
    zv::write_line(zv::szBufferDatiOut);
    return 0;
}

int lost_request_file() {
    return zv::fail("Funzione fopen() error!", ZV_UNSUPPORTED, "Primo File temporaneo non trovato");
}

// The crypto library's own session signs the file with the key in use.
int sign_request(const Request& request, const zv::RequestFile& file) {
    kvFinalize();
    int code = kvInitialize(zv::Libreria, zv::slot);
    if (code == 0) code = kvLogin(request.pin);
    if (code != 0) return zv::fail("Funzione DoInitialize() error!", code);
    char line[320] = "Richiesta firma con chiave CKA_ID: ";
    zv::append_text(line, request.key_id);
    zv::write_line(line);
    const bool ours_before = file.is_ours();
    code = ours_before ? kvSignFile(request.key_id, "SHA256", zv::REQUEST_FILE, zv::SIGNED_FILE) : 0;
    if (code != 0) return zv::fail("Funzione kvSignFile() error!", code);
    if (!ours_before || !file.is_ours()) {
        kvFinalize();
        return lost_request_file();
    }
    zv::write_line("Funzione 'kvSignFile()' completata con successo");
    code = kvFinalize();
    return code == 0 ? 0 : zv::fail("Funzione DoFinalize() error!", code);
}

int read_base64(char (&result)[ZV_REQUEST_SIZE]) {
    char from[sizeof zv::SIGNED_FILE], to[sizeof zv::BASE64_FILE];
    zv::copy_text(from, zv::SIGNED_FILE);
    zv::copy_text(to, zv::BASE64_FILE);
    if (const int code = kvFileToBase64(from, to, "e"))
        return zv::fail("Funzione kvFileToBase64() error!", code);
    const int descriptor = zv::open_base64();
    if (descriptor < 0)
        return zv::fail("Funzione fopen() error!", ZV_UNSUPPORTED, "File appoggio B64 non trovato");
    const std::size_t length = zv::read_all(descriptor, result, sizeof result - 1);
    ::close(descriptor);
    if (length == 0)
        return zv::fail("Funzione fread() error!", ZV_UNSUPPORTED, "Errore nella lettura file B64");
    return 0;
}

int create_request(const Request& request, char* request_out) {
    zv::clear(szBuffErr, zv::szBufferRichiesta, zv::szBufferDatiOut);
    char result[ZV_REQUEST_SIZE] = {};
    zv::trace_entry(request.function, "': INIZIO");
    zv::trace_module("Libreria pkcs#11 selezionata: ");
    char name[DN_SIZE];
    zv::copy_text(name, request.subject);
    _RiempiDN(name, sizeof name);
    if (const int code = make_request(request)) return code;

    zv::RequestFile file;
    if (!file.create(zv::szBufferDatiOut)) return lost_request_file();
    if (const int code = sign_request(request, file)) return code;
    if (const int code = read_base64(result)) return code;
    // The signed file is ours only if nobody took the request's name since.
    if (!file.is_ours()) return lost_request_file();
    char line[128] = "OUTPUT dalla funzione '";
    zv::append_text(line, request.function);
    zv::append_text(line, "':");
    zv::write_line(line);
    zv::write_line(result);
    zv::copy_text(request_out, ZV_REQUEST_SIZE, result);
    if (request_out != nullptr) request_out[ZV_REQUEST_SIZE - 1] = '\0';
    zv::trace_entry(request.function, "' corretamente Eseguita");
    zv::remove_request_files();
    return 0;
}

int create(const char* function, zv::Kind kind, char* request_out, const char* pending_label, char* pin,
           char* key_id, const char* dn, bool keep_flag) {
    return zv::guarded(zv::command_without_memory, [&] {
        std::string label = zv::or_empty(pending_label);
        char none[] = "";
        const Request request = {function,
                                 kind,
                                 label.data(),
                                 pin != nullptr ? pin : none,
                                 key_id != nullptr ? key_id : none,
                                 zv::or_empty(dn),
                                 keep_flag};
        return create_request(request, request_out);
    });
}

} // namespace

int rinnovo_Card_createCertRequestPRA(char* request_out, const char* pending_label, char* pin, char* key_id,
                                      const char* dn, bool keep_flag) {
    return create("rinnovo_Card_createCertRequestPRA", zv::Kind::signature, request_out, pending_label, pin,
                  key_id, dn, keep_flag);
}

int rinnovo_Card_createCertRequestAUT(char* request_out, const char* pending_label, char* pin, char* key_id,
                                      const char* dn, bool keep_flag) {
    const bool own = zv::or_empty(key_id) == zv::OWN_PAIR;
    const zv::Kind kind = own ? zv::Kind::services : zv::Kind::authentication;
    return create("rinnovo_Card_createCertRequestAUT", kind, request_out, pending_label, pin, key_id, dn,
                  keep_flag);
}
