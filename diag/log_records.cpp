// Records as log entries.
#include <new>
#include <string>

#include "diag/log.h"
#include "util/text.h"

void LogDN(datiDN* dn) try {
    if (dn == nullptr) return;
    std::string text;
    const auto add = [&text](const std::string& label, const auto& field) {
        text.append(label).append(zv::boundedText(field, sizeof field)).append("\n");
    };
    add("DN_country = ", dn->country);
    add("DN_organization = ", dn->organization);
    for (int unit = 0; unit < ZV_ORG_UNITS; ++unit)
        add("DN_orgUnit[" + std::to_string(unit) + "] = ", dn->orgUnit[unit]);
    add("DN_commonName = ", dn->commonName);
    add("DN_description = ", dn->description);
    add("DN_dnQualifier = ", dn->dnQualifier);
    add("DN_SerNum = ", dn->serialNumber);
    add("DN_givenName = ", dn->givenName);
    add("DN_surname = ", dn->surname);
    add("DN_eMail = ", dn->email);
    WriteLog("LOG_DN", "Dati DN", 0, text.c_str(), 0);
} catch (const std::bad_alloc&) {
}

void LogLabels(REQRENIN* request) try {
    if (request == nullptr) return;
    std::string text = "certificateLabel = <";
    text.append(zv::boundedText(request->certificateLabel, sizeof request->certificateLabel));
    text.append("> pendingLabel = <");
    text.append(zv::boundedText(request->pendingLabel, sizeof request->pendingLabel)).append(">");
    WriteLog(" .... ReqCert FUN                    .... ", "Labels", 0, text.c_str(), 0);
} catch (const std::bad_alloc&) {
}
