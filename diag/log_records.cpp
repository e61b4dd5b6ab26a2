// Records as log entries.
#include <new>
#include <string>

#include "diag/log.h"
#include "util/name_forms.h"

void LogDN(datiDN* dn) try {
    if (dn == nullptr) return;
    std::string text;
    for (const auto& [label, place] : zv::forms::LOG)
        text.append(label).append(zv::nameText(*dn, place)).append("\n");
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
