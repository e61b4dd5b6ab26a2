// Runs the cases of a profile through a module: other_modules MODULE PIN PROFILE [kept], in a folder with the authority
// and the configuration. A line for each case: its name, how it went, and why; joined by tabs.
#include "tests/other_modules/run.h"

#include <algorithm>
#include <dlfcn.h>
#include <iostream>
#include <span>

extern "C" char* getLogPath(void);

namespace {

using zvtest::Run;

struct Case {
    const char* name;
    const char* needs; ///< the case without whose success this one cannot run
    bool (*run)(Run&);
};

constexpr const char* pending = "AUTHCertificate0, DS0, DS3 (keys), Korvalenta Firma Dig (certificate)";
constexpr const char* marked = "CNS0, DS0, PDATA (data), pending_CNS_key (data)";

constexpr Case signatureCard[] = {
    {"card read", nullptr, [](Run& r) { return r.reads("011 DS3 AUTHCertificate3"); }},
    {"free identifiers", "card read", [](Run& r) { return r.findsFree("DS3 AUTHCertificate3"); }},
    {"wrong PIN told, the right one taken", "card read",
     [](Run& r) {
         return !r.reads("", "99999") && r.failedWith(CKR_PIN_INCORRECT) &&
                r.reads("011 DS3 AUTHCertificate3");
     }},
    {"request for a new pair", "card read",
     [](Run& r) { return r.requests("DS3", "DS0") && r.holds(pending); }},
    {"pending pair read", "request for a new pair",
     [](Run& r) { return r.reads("011 PRA DS3 AUTHCertificate3"); }},
    {"request again, same pair", "request for a new pair",
     [](Run& r) { return r.requests("DS3", "DS0") && r.holds(pending); }},
    {"request again, pending pair deleted first", "request for a new pair",
     [](Run& r) { return r.requests("DS3", "DS0", true) && r.holds(pending); }},
    {"certificate of another pair refused", "request again, pending pair deleted first",
     [](Run& r) {
         return !r.stores("DS0", "DS3", true, r.older) && r.failedWith(ZV_FAILED) && r.holds(pending);
     }},
    {"certificate stored, the old one kept", "request for a new pair",
     [](Run& r) {
         return r.stores("DS0", "DS3", true, r.certificate) &&
                r.holds("AUTHCertificate0, DS0, DS3, Korvalenta Firma Dig (certificate)");
     }},
    {"renewed with the new pair, which is then deleted", "certificate stored, the old one kept",
     [](Run& r) {
         return r.requests("DS4", "DS3") && r.replaces("DS3", "DS4") && r.holds("AUTHCertificate0, DS0, DS4");
     }},
    {"authentication renewed, the old pair deleted", "card read",
     [](Run& r) {
         return r.requests("AUTHCertificate3", "AUTHCertificate0") &&
                r.replaces("AUTHCertificate0", "AUTHCertificate3") &&
                r.compare(r.card().substr(0, 17), "AUTHCertificate3,");
     }},
};

constexpr Case servicesCard[] = {
    {"services card read", nullptr, [](Run& r) { return r.reads("110 DS3 "); }},
    {"services card: request for its own pair, marked", "services card read",
     [](Run& r) { return r.requests("CNS0", "CNS0") && r.holds(marked) && r.reads("110 CNS DS3 "); }},
    {"services card: its certificate replaced", "services card: request for its own pair, marked",
     [](Run& r) {
         return r.replaces("CNS0", "CNS0") && r.holds("CNS0, DS0, PDATA (data)") && r.reads("110 DS3 ") &&
                r.requests("CNS0", "CNS0");
     }},
    {"services card: requested again, marked once", "services card: its certificate replaced",
     [](Run& r) { return r.requests("CNS0", "CNS0") && r.holds(marked); }},
    {"services card: signature renewed, the old pair deleted", "services card read",
     [](Run& r) { return r.requests("DS3", "DS0") && r.replaces("DS0", "DS3") && r.reads("110 DS4 "); }},
};

std::string outcome(const Case& one, Run& run) {
    std::filesystem::remove("log");
    szSockMsg[0] = szBuffErr[0] = '\0';
    run.result = 0;
    try {
        if (one.run(run)) return "works\t";
    } catch (const std::exception& reason) {
        run.complaint = reason.what();
    }
    return (run.result != 0 ? "refused\t" : "differs\t") + run.complaint;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    std::snprintf(getLogPath(), 513, "log");
    loadErrorCodes();
    if (argc > 4) (void)::dlopen(argv[1], RTLD_NOW); // a host that keeps the module loaded
    Run run{argv[1], argv[2]};
    std::set<std::string> done;
    const bool services = argv[3] == std::string("services");
    for (const Case& one : services ? std::span<const Case>(servicesCard) : signatureCard) {
        std::cout << one.name << '\t' << std::flush; // so that it is known should the module end the process
        const bool can = one.needs == nullptr || done.contains(one.needs);
        std::string how = can ? outcome(one, run) : std::string("skipped\tneeds \"") + one.needs + '"';
        std::replace(how.begin(), how.end(), '\n', ' ');
        if (how.starts_with("works") || how.starts_with("differs")) done.insert(one.name);
        std::cout << how << std::endl;
    }
}
