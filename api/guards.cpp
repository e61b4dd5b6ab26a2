#include "api/guards.h"

#include "api/command_block.h"
#include "api/dn_input.h"
#include "api/lines.h"
#include "api/state.h"
#include "card/detection.h"
#include "diag/report.h"
#include "inventory/identifiers.h"
#include "records.h"
#include "util/text.h"
#include "util/wipe.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace zv {

namespace {

int stop(const char* reason, int outcome = ZV_NOT_SENT) {
    report_not_sent(reason);
    return outcome;
}

bool is_part(std::string_view part, std::string_view whole) {
    return whole.find(part) != std::string_view::npos;
}

int guard_readable(const char* certificate) {
    char text[ZVC_CERT_TEXT_SIZE] = {}, explanation[512] = {};
    if (std::strlen(certificate) >= sizeof text)
        return stop("il testo del certificato e' troppo lungo", ZV_FAILED);
    std::string writable(certificate);
    writeBuff(writable.data(), text);
    text[sizeof text - 1] = '\0';
    datiCert record{};
    if (SplitCert(text, &record, explanation, sizeof explanation) == 0) return ZV_OK;
    char reason[600] = "il certificato non e' leggibile: ";
    append_text(reason, bounded_text(explanation, sizeof explanation));
    return stop(reason, ZV_FAILED);
}

bool same_text(std::string_view given, std::string_view parsed, bool exact) {
    return exact ? given == parsed : trim_right(given) == trim_right(parsed);
}

bool same_name(const datiDN& given, const datiDN& parsed) {
    return std::all_of(std::begin(forms::BLOCK), std::end(forms::BLOCK), [&](const NameSpelling& spelling) {
        return same_text(name_text(given, spelling.place), name_text(parsed, spelling.place), false);
    });
}

} // namespace

int guard_request(const RequestCall& call) {
    const bool new_pair = kind_row(call.kind).new_pair;
    // Without a name, discarding would take the keys that have none.
    if (call.pending_label.empty() && (new_pair || call.discard_pending))
        return stop("manca l'identificativo della coppia di chiavi pending");
    if (new_pair && is_part(call.pending_label, call.key_id))
        return stop("l'identificativo pending e' contenuto in quello della chiave in uso");
    if (call.discard_pending && call.pending_label == OWN_PAIR)
        return stop("la coppia di chiavi propria della carta CNS verrebbe cancellata");
    return ZV_OK;
}

int guard_subject(const RequestCall& call) {
    datiDN whole = whole_name(call.subject);
    if (same_name({}, whole)) return stop("il nome del titolare non ha alcun attributo noto");
    // Lost or not, the request does not carry them.
    if (!kind_row(call.kind).new_pair)
        for (const NameAttribute left : forms::NOT_ON_SERVICES_CARD)
            set_name_text(whole, left, name_text(dNameRen, left));
    return same_name(dNameRen, whole)
               ? ZV_OK
               : stop("il nome del titolare e' troppo lungo: un attributo andrebbe perso");
}

int guard_install(const InstallCall& call) {
    if (call.pending_label.empty()) return stop("manca l'identificativo della coppia di chiavi pending");
    if (call.pending_label != call.cert_label && is_part(call.pending_label, call.cert_label))
        return stop("l'identificativo pending e' parte di quello del certificato da sostituire");
    if (!call.delete_old) return ZV_OK;
    if (kind_row(call.kind).new_pair) {
        if (is_part(call.cert_label, OWN_PAIR))
            return stop("la coppia di chiavi propria della carta CNS verrebbe cancellata");
        if (is_part(call.cert_label, call.pending_label))
            return stop("la nuova coppia di chiavi verrebbe cancellata");
    }
    return guard_readable(call.certificate);
}

int guard_block(const BlockValues& values) {
    REQRENIN parsed{};
    parse_block(szBufferRichiesta, parsed);
    const char slot_digit[] = {static_cast<char>('0' + slot % 10), '\0'};
    const struct {
        BlockIndex key;
        const char* given;
    } pairs[] = {
        {key_slot, slot_digit},
        {key_certificate_label, values.cert_label},
        {key_module, Libreria},
        {key_pin, values.pin},
        {key_kind, values.kind},
        {key_keep_flag, values.keep_flag},
        {key_pending_label, values.pending_label},
        {key_certificate, values.certificate},
    };
    bool faithful = slot >= 0 && slot <= ZV_LAST_SLOT && same_name(dNameRen, parsed.dn);
    for (const auto& [key, given] : pairs)
        faithful = faithful && same_text(given, field_text(parsed, BLOCK[key]), key == key_pin);
    wipe(&parsed, sizeof parsed);
    return faithful ? ZV_OK : stop("il blocco di comando non riporta i dati ricevuti");
}

bool guard_second_login(int dump_result) {
    const auto result = static_cast<CK_RV>(static_cast<unsigned>(dump_result));
    if (result != CKR_PIN_INCORRECT && result != CKR_PIN_LOCKED && result != CKR_PIN_EXPIRED) return false;
    stop("il PIN e' gia' stato rifiutato");
    return true;
}

} // namespace zv
