#include "api/commands.h"

#include "api/command_block.h"
#include "api/state.h"
#include "card/full_opener.h"
#include "card/light_opener.h"
#include "card/session.h"
#include "diag/log.h"
#include "diag/report.h"
#include "install/issued_certificate.h"
#include "kinds.h"
#include "request/request.h"
#include "store/deletion.h"
#include "store/keep_flag.h"
#include "store/renewal_state.h"
#include "util/numbers.h"
#include "util/text.h"
#include "util/wipe.h"
#include "zvRenew.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace zv {

namespace {

constexpr std::size_t BROKEN_LINE = 64;

// A record holds the PIN.
struct WipeRecord {
    void operator()(REQRENIN* record) const {
        wipe(record, sizeof *record);
        delete record;
    }
};

int slot_of(const REQRENIN& record) {
    return record.slot - '0';
}

// A later login by slot index is led to the same card; index 0 is looked up anew.
void remember_slot(int slot) {
    if (slot >= 0 && slot < static_cast<int>(CACHED_SLOTS)) vettoreSlotID[slot] = slotID;
}

int open_for(REQRENIN& record) {
    const int result = static_cast<int>(open_slot(slot_of(record), record.szPin, record.szDll));
    if (result == 0) remember_slot(slot_of(record));
    return result;
}

int give_result(std::span<char> out) {
    const std::string_view result = bounded_text(buffer, sizeof buffer);
    if (result.size() >= out.size()) return ZV_NOT_SENT;
    copy_text(out.data(), out.size(), result);
    return 0;
}

int delete_replaced(REQRENIN& record) {
    if (is_for_own_pair(record.szTipoCert)) return static_cast<int>(delete_own_certificate(hSession));
    return delete_certificate_and_keys(hSession, record.certificateLabel) ? 0 : ZV_FAILED;
}

int install_as_pending(REQRENIN& record, std::span<char> out) {
    copy_text(certAlias, record.pendingLabel);
    return install_record(record, out);
}

int replace_certificate(REQRENIN& record, std::span<char> out) {
    const int result = delete_replaced(record);
    if (result != 0) return result;
    const auto kind = kind_of_code(record.szTipoCert);
    if (kind && kind_row(*kind).authority)
        delete_authority_certificate(hSession, CAcertificateLabel, record.szTipoCert);
    return install_as_pending(record, out);
}

int run(std::string_view command, REQRENIN& record, std::span<char> out) {
    if (command == "REQREN") {
        write_line("inizio esecuzione della funzione Rinnova() (all'interno di miExecCmd() ..)");
        return renew(record, out, static_cast<CK_SLOT_ID>(static_cast<long>(slotUtente)));
    }
    if (command == "REQSCA") {
        write_line("inizio esecuzione della funzione Scarica() (all'interno di miExecCmd() ..)");
        return replace_or_keep(record, out);
    }
    return ZV_UNUSABLE;
}

} // namespace

int run_block(std::string_view command, std::string_view block, std::span<char> out) {
    const std::unique_ptr<REQRENIN, WipeRecord> record(new (std::nothrow) REQRENIN{});
    if (record == nullptr) return ZV_UNUSABLE;
    const auto found = parse_block(block, *record);
    publish(*record, found);
    slotUtente = slot_of(*record);
    // Handles of an earlier command died with its session.
    hPrivateKey = 0;
    hPublicKey = 0;
    const int result = run(command, *record, out);
    close_card();
    return result;
}

int request_record(REQRENIN& record, std::span<char> out, CommandSlot only_slot) {
    clear(buffer);
    trace("REQCERT_FUN", record.szTipoCert);
    write_line("Eseguo la funzione RichiestaCertificato() ..");
    const unsigned short result =
        request_certificate({record.szDll, record.szPin, only_slot}, record.szTipoCert, buffer);
    trace("Funzione RichiestaCertificato eseguita", buffer, with_hex("Ret Code = ", result));
    if (result != 0) return result;
    const std::size_t length = break_lines(buffer);
    trace("Dopo SepRows", buffer, with_hex("Len = ", static_cast<long>(length)));
    return give_result(out);
}

int install_record(REQRENIN& record, std::span<char> out) {
    clear(buffer);
    const int result = install_issued(record.szCertChain, record.szDll);
    trace("Dopo Memorizzazione", buffer, with_hex("Ret Code = ", result));
    return result != 0 ? result : give_result(out);
}

int replace_or_keep(REQRENIN& record, std::span<char> out) {
    int result = open_for(record);
    if (result != 0) return result;
    result = record.cKeepKeys == *KEEP_REPLACED ? install_as_pending(record, out)
                                                : replace_certificate(record, out);
    close_card();
    return result;
}

int renew(REQRENIN& record, std::span<char> out, CommandSlot only_slot) {
    const int result = open_for(record);
    if (result != 0) return result;
    write_line("inzizio esecuzione della funzione ReqCert() (all'interno di Rinnova() ..)");
    return request_record(record, out, only_slot);
}

std::size_t break_lines(char* text) {
    char copy[sizeof buffer + 1];
    copy_text(copy, text);
    char* out = text;
    const char* last = text + sizeof buffer - 2;
    std::size_t column = 0;
    const char* from = copy;
    for (; *from != '\0' && out < last; ++from) {
        if (*from == '\n') {
            column = 0;
        } else if (column == BROKEN_LINE) {
            *out++ = '\n';
            column = 1;
        } else {
            ++column;
        }
        *out++ = *from;
    }
    // Behind a text that is cut, what it was before would still stand.
    if (*from != '\0') *out = '\0';
    return static_cast<std::size_t>(out - text);
}

} // namespace zv
