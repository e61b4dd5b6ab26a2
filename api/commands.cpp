// miExecCmd and the commands that it runs.
#include "api/command_block.h"
#include "api/state.h"
#include "card/session.h"
#include "diag/log.h"
#include "diag/report.h"
#include "install/issued_certificate.h"
#include "kinds.h"
#include "request/request.h"
#include "routines/api.h"
#include "routines/card.h"
#include "store/deletion.h"
#include "store/keep_flag.h"
#include "store/renewal_state.h"
#include "util/numbers.h"
#include "util/text.h"
#include "util/wipe.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr std::size_t LINE_LENGTH = 64;

// A record holds the PIN.
struct WipeRecord {
    void operator()(REQRENIN* record) const {
        zv::wipe(record, sizeof *record);
        delete record;
    }
};

int slot_of(const REQRENIN& record) {
    return record.slot - '0';
}

// A later login by slot index is led to the same card; index 0 is looked up anew.
void remember_slot(int slot) {
    if (slot >= 0 && slot < static_cast<int>(zv::CACHED_SLOTS)) zv::vettoreSlotID[slot] = zv::slotID;
}

int open_for(REQRENIN& record) {
    const int result = static_cast<int>(__Initialize(slot_of(record), record.szPin, record.szDll));
    if (result == 0) remember_slot(slot_of(record));
    return result;
}

bool lacks(const REQRENIN* record, const char* out, const unsigned* out_len) {
    return record == nullptr || out == nullptr || out_len == nullptr;
}

int give_result(char* out, unsigned* out_len) {
    const std::size_t length = zv::bounded_text(zv::buffer, sizeof zv::buffer).size();
    if (length >= *out_len) return ZV_NOT_SENT;
    std::copy_n(zv::buffer, length + 1, out);
    *out_len = static_cast<unsigned>(length);
    return 0;
}

int delete_replaced(REQRENIN& record) {
    if (zv::kind_of_code(record.szTipoCert) == zv::Kind::services)
        return static_cast<int>(zv::delete_own_certificate(zv::hSession));
    return zv::delete_certificate_and_keys(zv::hSession, record.certificateLabel) ? 0 : ZV_FAILED;
}

int install_as_pending(REQRENIN& record, char* out, unsigned* out_len) {
    zv::copy_text(zv::certAlias, record.pendingLabel);
    return ScaCert(&record, nullptr, out, out_len);
}

int replace_certificate(REQRENIN& record, char* out, unsigned* out_len) {
    const int result = delete_replaced(record);
    if (result != 0) return result;
    const auto kind = zv::kind_of_code(record.szTipoCert);
    if (kind && zv::kind_row(*kind).authority)
        zv::delete_authority_certificate(zv::hSession, zv::CAcertificateLabel, record.szTipoCert);
    return install_as_pending(record, out, out_len);
}

int run(const char* command, REQRENIN& record, char* out, unsigned* out_len) {
    if (std::strcmp(command, "REQREN") == 0) {
        zv::write_line("inizio esecuzione della funzione Rinnova() (all'interno di miExecCmd() ..)");
        return Rinnova(&record, out, out_len);
    }
    if (std::strcmp(command, "REQSCA") == 0) {
        zv::write_line("inizio esecuzione della funzione Scarica() (all'interno di miExecCmd() ..)");
        return Scarica(&record, out, out_len);
    }
    return ZV_UNUSABLE;
}

} // namespace

int miExecCmd(const char* command, char* block, long, char* out, long* out_len) {
    if (out == nullptr || out_len == nullptr) return ZV_UNUSABLE;
    const std::unique_ptr<REQRENIN, WipeRecord> record(new (std::nothrow) REQRENIN{});
    if (record == nullptr) return ZV_UNUSABLE;
    const auto found = zv::parse_block(zv::or_empty(block), *record);
    zv::publish(*record, found);
    zv::slotUtente = slot_of(*record);
    const zv::CommandSlot held(static_cast<CK_SLOT_ID>(static_cast<long>(zv::slotUtente)));
    // Handles of an earlier command died with its session.
    zv::hPrivateKey = 0;
    zv::hPublicKey = 0;
    // The length is a 32-bit value in a wider variable, whose other half is left alone.
    auto length = static_cast<unsigned>(*out_len);
    const int result = run(zv::or_empty(command), *record, out, &length);
    if (result == 0)
        *out_len = static_cast<long>((static_cast<unsigned long>(*out_len) & ~0xFFFFFFFFUL) | length);
    finalizza();
    return result;
}

int ReqCert(REQRENIN* rec, datiDN*, char* out, unsigned* out_len) {
    if (lacks(rec, out, out_len)) return ZV_UNUSABLE;
    zv::clear(zv::buffer);
    zv::trace("REQCERT_FUN", rec->szTipoCert);
    zv::write_line("Eseguo la funzione RichiestaCertificato() ..");
    const unsigned short result =
        zv::request_certificate({rec->szDll, rec->szPin}, rec->szTipoCert, zv::buffer);
    zv::trace("Funzione RichiestaCertificato eseguita", zv::buffer, zv::with_hex("Ret Code = ", result));
    if (result != 0) return result;
    const unsigned long length = SepRows(zv::buffer);
    zv::trace("Dopo SepRows", zv::buffer, zv::with_hex("Len = ", static_cast<long>(length)));
    return give_result(out, out_len);
}

int ScaCert(REQRENIN* rec, datiDN*, char* out, unsigned* out_len) {
    if (lacks(rec, out, out_len)) return ZV_UNUSABLE;
    zv::clear(zv::buffer);
    const int result = zv::install_issued(rec->szCertChain, rec->szDll);
    zv::trace("Dopo Memorizzazione", zv::buffer, zv::with_hex("Ret Code = ", result));
    return result != 0 ? result : give_result(out, out_len);
}

int Scarica(REQRENIN* rec, char* out, unsigned* out_len) {
    if (lacks(rec, out, out_len)) return ZV_UNUSABLE;
    int result = open_for(*rec);
    if (result != 0) return result;
    result = rec->cKeepKeys == *zv::KEEP_REPLACED ? install_as_pending(*rec, out, out_len)
                                                  : replace_certificate(*rec, out, out_len);
    finalizza();
    return result;
}

int Rinnova(REQRENIN* rec, char* out, unsigned* out_len) {
    if (lacks(rec, out, out_len)) return ZV_UNUSABLE;
    const int result = open_for(*rec);
    if (result != 0) return result;
    zv::write_line("inzizio esecuzione della funzione ReqCert() (all'interno di Rinnova() ..)");
    return ReqCert(rec, &rec->dn, out, out_len);
}

unsigned long SepRows(char* text) {
    if (text == nullptr) return 0;
    char copy[sizeof zv::buffer + 1];
    zv::copy_text(copy, text);
    char* out = text;
    const char* last = text + sizeof zv::buffer - 2;
    std::size_t column = 0;
    const char* from = copy;
    for (; *from != '\0' && out < last; ++from) {
        if (*from == '\n') {
            column = 0;
        } else if (column == LINE_LENGTH) {
            *out++ = '\n';
            column = 1;
        } else {
            ++column;
        }
        *out++ = *from;
    }
    // Behind a text that is cut, what it was before would still stand.
    if (*from != '\0') *out = '\0';
    return static_cast<unsigned long>(out - text);
}
