#include "ossl/memory_bio.h"
#include "routines/card.h"
#include "routines/store.h"
#include "tests/sweeps/bench.h"

#include <openssl/pem.h>

namespace zvtest {

namespace {

// The subject and the key that the authority certifies for a request.
Answer requested(SweepCard& host, int result) {
    if (result != 0) return {result, ""};
    try {
        host.certificate = host.issue();
        const ossl::Bio pem = ossl::reading(host.certificate), out = ossl::writing();
        const ossl::Certificate issued(PEM_read_bio_X509(pem.get(), nullptr, nullptr, nullptr));
        X509_NAME_print_ex(out.get(), X509_get_subject_name(issued.get()), 0, XN_FLAG_ONELINE);
        PEM_write_bio_PUBKEY(out.get(), X509_get0_pubkey(issued.get()));
        return {0, std::string(ossl::written(*out))};
    } catch (const std::exception&) {
        return {0, REFUSAL};
    }
}

Answer read(SweepCard& host) {
    const Reading reading = host.read();
    Answer answer{reading.result, reading.key_pra + " " + reading.key_aut};
    for (const int flag : {reading.pending_cns, reading.pending_pra, reading.pending_aut})
        answer.data += " " + std::to_string(flag);
    for (const auto* list : {&reading.cns, &reading.pra, &reading.aut})
        for (const std::string& record : *list)
            answer.data += "\n" + record;
    return answer;
}

Answer find_free(SweepCard& host) {
    std::string pra, aut;
    const int result = host.find_free(pra, aut);
    return {result, pra + " " + aut};
}

Answer request(SweepCard& host) {
    return requested(host, host.request());
}
Answer request_next(SweepCard& host) {
    return requested(host, host.request("DS5"));
}
Answer request_anew(SweepCard& host) {
    return requested(host, host.request("DS5", "DS0", true));
}
Answer request_own(SweepCard& host) {
    return requested(host, host.request_authentication("CNS0", "CNS0"));
}

// Leaves the pending pair that is not the next one that the card makes.
Answer drop_first(SweepCard& host) {
    std::string pin = SweepCard::PIN, first = "DS3", library = host.path();
    if (__Initialize(0, pin.data(), library.data()) == CKR_OK)
        DeleteObjectByLabel(zv::hSession, first.data());
    finalizza();
    return {};
}

template <bool keep> Answer save(SweepCard& host) {
    return {host.save(host.certificate, keep), ""};
}
template <bool keep> Answer save_own(SweepCard& host) {
    return {host.save_authentication(host.certificate, keep, "CNS0", "CNS0"), ""};
}

} // namespace

const std::vector<FlowPlan>& flow_plans() {
    constexpr const char *s = "signature", *c = "cns-signature", *none = "^$", *marker = "pending_CNS_key";
    const std::vector<Use> pending = {read, request}, own_pending = {read, request_own};
    static const std::vector<FlowPlan> plans = {
        {"read", "reading", s, "-", {read}, read, none},
        {"free", "free identifiers", s, "-", {read}, find_free, none},
        {"request", "request, new pair", s, "DS3", {read}, request, none},
        {"request-pending", "request, pending pair", s, "DS3", pending, request, none},
        {"request-anew",
         "request, old pending pair removed",
         s,
         "DS5",
         {read, request, request_next, drop_first},
         request_anew,
         "key\\|DS5"},
        {"install-keep", "installing, old pair kept", s, "DS3", pending, save<true>, none},
        {"install-delete", "installing, old pair deleted", s, "DS3", pending, save<false>,
         "\\|DS0\\||\\|Korvalenta"},
        {"cns-read", "services card: reading", c, "-", own_pending, read, none},
        {"cns-request", "services card: request, own pair", c, "-", {read}, request_own, none},
        {"cns-request-new", "services card: request, new pair", c, "DS3", {read}, request, none},
        {"cns-install-keep", "services card: installing, old kept", c, "CNS0", own_pending, save_own<true>,
         marker},
        {"cns-install-delete", "services card: installing, old deleted", c, "CNS0", own_pending,
         save_own<false>, "pending_CNS_key|certificate\\|CNS0", save_own<true>},
    };
    return plans;
}

} // namespace zvtest
