// miExecCmd and the commands that it runs.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "api/command_block.h"
#include "api/state.h"
#include "card/session.h"
#include "diag/log.h"
#include "store/renewal_state.h"
#include "util/text.h"
#include "util/wipe.h"

namespace {

constexpr std::size_t LINE_LENGTH = 64;

// A record holds the PIN.
struct WipeRecord {
    void operator()(REQRENIN* record) const {
        zv::wipe(record, sizeof *record);
        delete record;
    }
};

int slotOf(const REQRENIN& record) {
    return record.slot - '0';
}

// A later login by slot index is led to the same card; index 0 is looked up anew.
void rememberSlot(int slot) {
    if (slot >= 0 && slot < static_cast<int>(zv::CACHED_SLOTS)) zv::vettoreSlotID[slot] = zv::slotID;
}

int openFor(REQRENIN& record) {
    const int result = static_cast<int>(__Initialize(slotOf(record), record.szPin, record.szDll));
    if (result == 0) rememberSlot(slotOf(record));
    return result;
}

bool lacks(const REQRENIN* record, const char* out, const unsigned* outLen) {
    return record == nullptr || out == nullptr || outLen == nullptr;
}

int giveResult(char* out, unsigned* outLen) {
    const std::size_t length = zv::boundedText(zv::buffer, sizeof zv::buffer).size();
    if (length >= *outLen) return ZV_NOT_SENT;
    std::copy_n(zv::buffer, length + 1, out);
    *outLen = static_cast<unsigned>(length);
    return 0;
}

int deleteReplaced(REQRENIN& record) {
    if (std::strcmp(record.szTipoCert, "CNS") == 0) return static_cast<int>(DeleteCertCNS(zv::hSession));
    return DeleteCertAndKeys(zv::hSession, record.certificateLabel, record.szTipoCert);
}

int storeUnderPending(REQRENIN& record, char* out, unsigned* outLen) {
    zv::copyText(zv::certAlias, record.pendingLabel);
    return ScaCert(&record, nullptr, out, outLen);
}

int replaceCertificate(REQRENIN& record, char* out, unsigned* outLen) {
    const int result = deleteReplaced(record);
    if (result != 0) return result;
    if (std::strcmp(record.szTipoCert, "PRA") == 0)
        DeleteCertCA(zv::hSession, zv::CAcertificateLabel, record.szTipoCert);
    return storeUnderPending(record, out, outLen);
}

int run(const char* command, REQRENIN& record, char* out, unsigned* outLen) {
    if (std::strcmp(command, "REQREN") == 0) {
        scriviLog("inizio esecuzione della funzione Rinnova() (all'interno di miExecCmd() ..)");
        return Rinnova(&record, out, outLen);
    }
    if (std::strcmp(command, "REQSCA") == 0) {
        scriviLog("inizio esecuzione della funzione Scarica() (all'interno di miExecCmd() ..)");
        return Scarica(&record, out, outLen);
    }
    return ZV_UNUSABLE;
}

} // namespace

int miExecCmd(const char* command, char* block, long, char* out, long* outLen) {
    if (out == nullptr || outLen == nullptr) return ZV_UNUSABLE;
    const std::unique_ptr<REQRENIN, WipeRecord> record(new (std::nothrow) REQRENIN{});
    if (record == nullptr) return ZV_UNUSABLE;
    const auto found = zv::parseBlock(zv::orEmpty(block), *record);
    zv::publish(*record, found);
    zv::slotUtente = slotOf(*record);
    const zv::CommandSlot held(static_cast<CK_SLOT_ID>(static_cast<long>(zv::slotUtente)));
    // Handles of an earlier command died with its session.
    zv::hPrivateKey = 0;
    zv::hPublicKey = 0;
    // The length is a 32-bit value in a wider variable, whose other half is left alone.
    auto length = static_cast<unsigned>(*outLen);
    const int result = run(zv::orEmpty(command), *record, out, &length);
    if (result == 0)
        *outLen = static_cast<long>((static_cast<unsigned long>(*outLen) & ~0xFFFFFFFFUL) | length);
    finalizza();
    return result;
}

int ReqCert(REQRENIN* rec, datiDN*, char* out, unsigned* outLen) {
    if (lacks(rec, out, outLen)) return ZV_UNUSABLE;
    zv::clear(zv::buffer);
    zv::trace("REQCERT_FUN", rec->szTipoCert);
    scriviLog("Eseguo la funzione RichiestaCertificato() ..");
    const unsigned short result = RichiestaCertificato(zv::buffer, rec->szDll, rec->szPin, rec->szTipoCert);
    zv::trace("Funzione RichiestaCertificato eseguita", zv::buffer, CatItoAHex1("Ret Code = ", result));
    if (result != 0) return result;
    const unsigned long length = SepRows(zv::buffer);
    zv::trace("Dopo SepRows", zv::buffer, CatLtoAHex1("Len = ", static_cast<long>(length)));
    return giveResult(out, outLen);
}

int ScaCert(REQRENIN* rec, datiDN*, char* out, unsigned* outLen) {
    if (lacks(rec, out, outLen)) return ZV_UNUSABLE;
    zv::clear(zv::buffer);
    const int result = MemorizzazioneCertificato(nullptr, rec->szCertChain, rec->szDll, rec->szPin);
    zv::trace("Dopo Memorizzazione", zv::buffer, CatItoAHex1("Ret Code = ", result));
    return result != 0 ? result : giveResult(out, outLen);
}

int Scarica(REQRENIN* rec, char* out, unsigned* outLen) {
    if (lacks(rec, out, outLen)) return ZV_UNUSABLE;
    int result = openFor(*rec);
    if (result != 0) return result;
    result =
        rec->cKeepKeys == 'R' ? storeUnderPending(*rec, out, outLen) : replaceCertificate(*rec, out, outLen);
    finalizza();
    return result;
}

int Rinnova(REQRENIN* rec, char* out, unsigned* outLen) {
    if (lacks(rec, out, outLen)) return ZV_UNUSABLE;
    const int result = openFor(*rec);
    if (result != 0) return result;
    scriviLog("inzizio esecuzione della funzione ReqCert() (all'interno di Rinnova() ..)");
    return ReqCert(rec, &rec->dn, out, outLen);
}

unsigned long SepRows(char* text) {
    if (text == nullptr) return 0;
    char copy[sizeof zv::buffer + 1];
    zv::copyText(copy, text);
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
