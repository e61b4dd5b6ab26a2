#include "api/guards.h"

#include <algorithm>
#include <cstring>

#include "api/command_block.h"
#include "api/dn_input.h"
#include "api/lines.h"
#include "api/state.h"
#include "card/detection.h"
#include "diag/log.h"
#include "util/text.h"
#include "util/wipe.h"

namespace zv {

namespace {

constexpr std::string_view OWN_PAIR = "CNS0";
constexpr std::string_view SERVICES_CARD = "CNS";

int stop(const char* reason, int outcome = ZV_NOT_SENT) {
    reportNotSent(reason);
    return outcome;
}

bool isPart(std::string_view part, std::string_view whole) {
    return whole.find(part) != std::string_view::npos;
}

int guardReadable(const char* certificate) {
    char text[ZVC_CERT_TEXT_SIZE] = {}, explanation[512] = {};
    if (std::strlen(certificate) >= sizeof text)
        return stop("il testo del certificato e' troppo lungo", ZV_FAILED);
    writeBuff(const_cast<char*>(certificate), text);
    text[sizeof text - 1] = '\0';
    datiCert record{};
    if (SplitCert(text, &record, explanation, sizeof explanation) == 0) return ZV_OK;
    char reason[600] = "il certificato non e' leggibile: ";
    appendText(reason, boundedText(explanation, sizeof explanation));
    return stop(reason, ZV_FAILED);
}

bool sameText(std::string_view given, std::string_view parsed, bool exact) {
    return exact ? given == parsed : trimRight(given) == trimRight(parsed);
}

bool sameName(const datiDN& given, const datiDN& parsed) {
    return std::all_of(std::begin(forms::BLOCK), std::end(forms::BLOCK), [&](const NameSpelling& spelling) {
        return sameText(nameText(given, spelling.place), nameText(parsed, spelling.place), false);
    });
}

} // namespace

int guardRequest(const RequestCall& call) {
    const bool servicesCard = call.kind == SERVICES_CARD;
    // Without a name, discarding would take the keys that have none.
    if (call.pendingLabel.empty() && (!servicesCard || call.discardPending))
        return stop("manca l'identificativo della coppia di chiavi pending");
    if (!servicesCard && isPart(call.pendingLabel, call.keyId))
        return stop("l'identificativo pending e' contenuto in quello della chiave in uso");
    if (call.discardPending && call.pendingLabel == OWN_PAIR)
        return stop("la coppia di chiavi propria della carta CNS verrebbe cancellata");
    return ZV_OK;
}

int guardSubject(const RequestCall& call) {
    datiDN whole = wholeName(call.subject);
    if (sameName({}, whole)) return stop("il nome del titolare non ha alcun attributo noto");
    // Lost or not, the request does not carry them.
    if (call.kind == SERVICES_CARD)
        for (const NameAttribute left : forms::NOT_ON_SERVICES_CARD)
            setNameText(whole, left, nameText(dNameRen, left));
    return sameName(dNameRen, whole)
               ? ZV_OK
               : stop("il nome del titolare e' troppo lungo: un attributo andrebbe perso");
}

int guardStoring(const StoringCall& call) {
    if (call.pendingLabel.empty()) return stop("manca l'identificativo della coppia di chiavi pending");
    if (call.pendingLabel != call.certLabel && isPart(call.pendingLabel, call.certLabel))
        return stop("l'identificativo pending e' parte di quello del certificato da sostituire");
    if (!call.deleteOld) return ZV_OK;
    if (call.kind != SERVICES_CARD) {
        if (isPart(call.certLabel, OWN_PAIR))
            return stop("la coppia di chiavi propria della carta CNS verrebbe cancellata");
        if (isPart(call.certLabel, call.pendingLabel))
            return stop("la nuova coppia di chiavi verrebbe cancellata");
    }
    return guardReadable(call.certificate);
}

int guardBlock(const BlockValues& values) {
    REQRENIN parsed{};
    parseBlock(szBufferRichiesta, parsed);
    const char slotDigit[] = {static_cast<char>('0' + slot % 10), '\0'};
    const struct {
        BlockIndex key;
        const char* given;
    } pairs[] = {
        {KEY_SLOT, slotDigit},
        {KEY_CERTIFICATE_LABEL, values.certLabel},
        {KEY_MODULE, Libreria},
        {KEY_PIN, values.pin},
        {KEY_KIND, values.kind},
        {KEY_KEEP_FLAG, values.keepFlag},
        {KEY_PENDING_LABEL, values.pendingLabel},
        {KEY_CERTIFICATE, values.certificate},
    };
    bool faithful = slot >= 0 && slot <= 9 && sameName(dNameRen, parsed.dn);
    for (const auto& [key, given] : pairs)
        faithful = faithful && sameText(given, fieldText(parsed, BLOCK[key]), key == KEY_PIN);
    wipe(&parsed, sizeof parsed);
    return faithful ? ZV_OK : stop("il blocco di comando non riporta i dati ricevuti");
}

bool guardSecondLogin(int dumpResult) {
    const auto result = static_cast<CK_RV>(static_cast<unsigned>(dumpResult));
    if (result != CKR_PIN_INCORRECT && result != CKR_PIN_LOCKED && result != CKR_PIN_EXPIRED) return false;
    stop("il PIN e' gia' stato rifiutato");
    return true;
}

} // namespace zv
