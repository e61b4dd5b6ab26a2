// Records as log entries.
#include "diag/log.h"
#include "routines/diag.h"
#include "util/guarded.h"
#include "util/name_forms.h"

#include <string>

void LogDN(datiDN* dn) {
    if (dn == nullptr) return;
    zv::guarded([dn] {
        std::string text;
        for (const auto& [label, place] : zv::forms::LOG)
            text.append(label).append(zv::name_text(*dn, place)).append("\n");
        WriteLog("LOG_DN", "Dati DN", 0, text.c_str(), 0);
    });
}

void LogLabels(REQRENIN* request) {
    if (request == nullptr) return;
    zv::guarded([request] {
        std::string text = "certificateLabel = <";
        text.append(zv::bounded_text(request->certificateLabel, sizeof request->certificateLabel));
        text.append("> pendingLabel = <");
        text.append(zv::bounded_text(request->pendingLabel, sizeof request->pendingLabel)).append(">");
        WriteLog(" .... ReqCert FUN                    .... ", "Labels", 0, text.c_str(), 0);
    });
}
