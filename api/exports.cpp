// The C face of this folder.
#include "api/command_block.h"
#include "api/commands.h"
#include "api/dn_input.h"
#include "api/entry.h"
#include "api/installing.h"
#include "api/reading.h"
#include "api/requests.h"
#include "routines/api.h"
#include "util/guarded.h"
#include "util/text.h"

#include <cstring>

namespace {

// Runs a command on a host's record and buffer, whose length it takes and gives.
template <typename Command> int into(REQRENIN* rec, char* out, unsigned* out_len, Command command) {
    if (rec == nullptr || out == nullptr || out_len == nullptr) return ZV_UNUSABLE;
    const int result = zv::guarded(ZV_UNUSABLE, [&] { return command(*rec, {out, *out_len}); });
    if (result == 0) *out_len = static_cast<unsigned>(std::strlen(out));
    return result;
}

int request(const char* function, zv::Kind kind, char* request_out, const char* pending_label,
            const char* pin, const char* key_id, const char* dn, bool discard) {
    using zv::or_empty;
    const zv::Request request = {
        function, kind, or_empty(pending_label), or_empty(pin), or_empty(key_id), or_empty(dn), discard};
    return zv::guarded(zv::command_without_memory, [&] { return zv::create_request(request, request_out); });
}

int install(const char* function, zv::Kind kind, const char* pin, char* cert_label, const char* pending_label,
            const char* cert_chain, bool keep_old) {
    using zv::or_empty;
    const zv::Installation installation = {
        function, kind, cert_label, or_empty(pending_label), or_empty(pin), or_empty(cert_chain), keep_old};
    return zv::guarded(zv::command_without_memory, [&] { return zv::install_certificate(installation); });
}

} // namespace

int rinnovo_Card_readCerts(char* reader, char* pin, int, char** list_cns, char** list_pra, char** list_aut,
                           int* pending_cns, int* pending_pra, int* pending_aut, char* key_pra, char* key_aut,
                           char*, const char* module_dir) {
    const zv::Reading buffers = {
        {{{list_pra, pending_pra, key_pra}, {list_aut, pending_aut, key_aut}, {list_cns, pending_cns}}}};
    char no_pin[] = "";
    return zv::guarded(zv::close_unusable, [&] {
        return zv::read_certificates(buffers, reader, pin != nullptr ? pin : no_pin,
                                     zv::or_empty(module_dir));
    });
}

int rinnovo_Card_findFreeCKAID(char* reader, char* pin, char* key_pra, char* key_aut) {
    const zv::Reading buffers = {{{{.key = key_pra}, {.key = key_aut}}}};
    char no_pin[] = "";
    return zv::guarded(zv::close_unusable, [&] {
        return zv::find_free_identifiers(buffers, reader, pin != nullptr ? pin : no_pin);
    });
}

int rinnovo_Card_createCertRequestPRA(char* request_out, const char* pending_label, char* pin, char* key_id,
                                      const char* dn, bool keep_flag) {
    return request(__func__, zv::Kind::signature, request_out, pending_label, pin, key_id, dn, keep_flag);
}

int rinnovo_Card_createCertRequestAUT(char* request_out, const char* pending_label, char* pin, char* key_id,
                                      const char* dn, bool keep_flag) {
    return request(__func__, zv::Kind::authentication, request_out, pending_label, pin, key_id, dn,
                   keep_flag);
}

int rinnovo_Card_saveCertPRA(char* pin, char* cert_label, char* pending_label, char* cert_chain,
                             bool keep_old) {
    return install(__func__, zv::Kind::signature, pin, cert_label, pending_label, cert_chain, keep_old);
}

int rinnovo_Card_saveCertAUT(char* pin, char* cert_label, char* pending_label, char* cert_chain,
                             bool keep_old) {
    return install(__func__, zv::Kind::authentication, pin, cert_label, pending_label, cert_chain, keep_old);
}

unsigned long RichiestaMinInfo(char* cert_label, const char* pin, const char* cert_chain, char* pending_label,
                               const char* cert_kind, const char* keep_flag) {
    return zv::write_block({zv::or_empty(cert_label), zv::or_empty(pin), zv::or_empty(cert_chain),
                            zv::or_empty(pending_label), zv::or_empty(cert_kind), zv::or_empty(keep_flag)})
        .length;
}

int miExecCmd(const char* command, char* block, long, char* out, long* out_len) {
    if (out == nullptr || out_len == nullptr) return ZV_UNUSABLE;
    // The length is a 32-bit value in a wider variable, whose other half is left alone.
    const std::span<char> room(out, static_cast<unsigned>(*out_len));
    const int result = zv::guarded(
        zv::close_unusable, [&] { return zv::run_block(zv::or_empty(command), zv::or_empty(block), room); });
    if (result == 0)
        *out_len =
            static_cast<long>((static_cast<unsigned long>(*out_len) & ~0xFFFFFFFFUL) | std::strlen(out));
    return result;
}

int ReqCert(REQRENIN* rec, datiDN*, char* out, unsigned* out_len) {
    return into(rec, out, out_len,
                [](REQRENIN& record, std::span<char> room) { return zv::request_record(record, room, {}); });
}

int ScaCert(REQRENIN* rec, datiDN*, char* out, unsigned* out_len) {
    return into(rec, out, out_len, zv::install_record);
}

int Scarica(REQRENIN* rec, char* out, unsigned* out_len) {
    return into(rec, out, out_len, zv::replace_or_keep);
}

int Rinnova(REQRENIN* rec, char* out, unsigned* out_len) {
    return into(rec, out, out_len,
                [](REQRENIN& record, std::span<char> room) { return zv::renew(record, room, {}); });
}

unsigned long SepRows(char* text) {
    return text != nullptr ? zv::break_lines(text) : 0;
}

void replace(char* text, char* from, char* to) {
    zv::guarded([&] { zv::replace_text(zv::or_empty(text), zv::or_empty(from), zv::or_empty(to)); });
}

void ResettaDN() {
    zv::clear_subject();
}

void CaricaDN(char* text) {
    zv::load_subject(zv::or_empty(text));
}

void _RiempiDN(char* dn, unsigned int size) {
    zv::guarded([&] { zv::take_subject({dn, dn != nullptr ? size : 0}); });
}
