// Records as log entries.
#include <string>

#include "diag/log.h"
#include "util/guarded.h"
#include "util/name_forms.h"

void LogDN(datiDN* dn) {
    if (dn == nullptr) return;
    zv::guarded([dn] {
        std::string text;
        for (const auto& [label, place] : zv::forms::LOG)
            text.append(label).append(zv::nameText(*dn, place)).append("\n");
        WriteLog("LOG_DN", "Dati DN", 0, text.c_str(), 0);
    });
}

void LogLabels(REQRENIN* request) {
    if (request == nullptr) return;
    zv::guarded([request] {
        std::string text = "certificateLabel = <";
        text.append(zv::boundedText(request->certificateLabel, sizeof request->certificateLabel));
        text.append("> pendingLabel = <");
        text.append(zv::boundedText(request->pendingLabel, sizeof request->pendingLabel)).append(">");
        WriteLog(" .... ReqCert FUN                    .... ", "Labels", 0, text.c_str(), 0);
    });
}
