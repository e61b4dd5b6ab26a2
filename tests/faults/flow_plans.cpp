#include "simcard/authority/memory_bio.h"
#include "tests/faults/bench.h"

#include <openssl/pem.h>

namespace zvtest {

namespace {

// The subject and the key that the authority certifies for a request.
Answer requested(SweepCard& host, int result) {
    if (result != 0) return {result, ""};
    try {
        host.certificate = host.issue();
        const simcard::Bio pem = simcard::reading(host.certificate), out = simcard::writing();
        const simcard::Certificate issued(PEM_read_bio_X509(pem.get(), nullptr, nullptr, nullptr));
        X509_NAME_print_ex(out.get(), X509_get_subject_name(issued.get()), 0, XN_FLAG_ONELINE);
        PEM_write_bio_PUBKEY(out.get(), X509_get0_pubkey(issued.get()));
        return {0, std::string(simcard::written(*out))};
    } catch (const std::exception&) {
        return {0, REFUSAL};
    }
}

Answer read(SweepCard& host) {
    const Reading reading = host.read();
    Answer answer{reading.result, reading.keyPRA + " " + reading.keyAUT};
    for (const int flag : {reading.pendingCNS, reading.pendingPRA, reading.pendingAUT})
        answer.data += " " + std::to_string(flag);
    for (const auto* list : {&reading.cns, &reading.pra, &reading.aut})
        for (const std::string& record : *list)
            answer.data += "\n" + record;
    return answer;
}

Answer findFree(SweepCard& host) {
    std::string pra, aut;
    const int result = host.findFree(pra, aut);
    return {result, pra + " " + aut};
}

Answer request(SweepCard& host) {
    return requested(host, host.request());
}
Answer requestNext(SweepCard& host) {
    return requested(host, host.request("DS5"));
}
Answer requestAnew(SweepCard& host) {
    return requested(host, host.request("DS5", "DS0", true));
}
Answer requestOwn(SweepCard& host) {
    return requested(host, host.requestAuthentication("CNS0", "CNS0"));
}

// Leaves the pending pair that is not the next one that the card makes.
Answer dropFirst(SweepCard& host) {
    std::string pin = SweepCard::PIN, first = "DS3", library = host.path();
    if (__Initialize(0, pin.data(), library.data()) == CKR_OK)
        DeleteObjectByLabel(zv::hSession, first.data());
    finalizza();
    return {};
}

template <bool keep> Answer save(SweepCard& host) {
    return {host.save(host.certificate, keep), ""};
}
template <bool keep> Answer saveOwn(SweepCard& host) {
    return {host.saveAuthentication(host.certificate, keep, "CNS0", "CNS0"), ""};
}

} // namespace

const std::vector<FlowPlan>& flowPlans() {
    constexpr const char *S = "signature", *C = "cns-signature", *NONE = "^$", *MARKER = "pending_CNS_key";
    const std::vector<Use> pending = {read, request}, ownPending = {read, requestOwn};
    static const std::vector<FlowPlan> plans = {
        {"read", "reading", S, "-", {read}, read, NONE},
        {"free", "free identifiers", S, "-", {read}, findFree, NONE},
        {"request", "request, new pair", S, "DS3", {read}, request, NONE},
        {"request-pending", "request, pending pair", S, "DS3", pending, request, NONE},
        {"request-anew",
         "request, old pending pair removed",
         S,
         "DS5",
         {read, request, requestNext, dropFirst},
         requestAnew,
         "key\\|DS5"},
        {"store-keep", "storing, old pair kept", S, "DS3", pending, save<true>, NONE},
        {"store-delete", "storing, old pair deleted", S, "DS3", pending, save<false>,
         "\\|DS0\\||\\|Korvalenta"},
        {"cns-read", "services card: reading", C, "-", ownPending, read, NONE},
        {"cns-request", "services card: request, own pair", C, "-", {read}, requestOwn, NONE},
        {"cns-request-new", "services card: request, new pair", C, "DS3", {read}, request, NONE},
        {"cns-store-keep", "services card: storing, old kept", C, "CNS0", ownPending, saveOwn<true>, MARKER},
        {"cns-store-delete", "services card: storing, old deleted", C, "CNS0", ownPending, saveOwn<false>,
         "pending_CNS_key|certificate\\|CNS0", saveOwn<true>},
    };
    return plans;
}

} // namespace zvtest
