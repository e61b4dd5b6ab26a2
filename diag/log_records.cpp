#include "diag/log_records.h"

#include "diag/log.h"
#include "util/name_forms.h"

#include <string>

namespace zv {

void log_subject(const datiDN& subject) {
    std::string text;
    for (const auto& [label, place] : forms::LOG)
        text.append(label).append(name_text(subject, place)).append("\n");
    write_entry("LOG_DN", "Dati DN", text);
}

void log_labels(const REQRENIN& request) {
    std::string text = "certificateLabel = <";
    text.append(bounded_text(request.certificateLabel, sizeof request.certificateLabel));
    text.append("> pendingLabel = <");
    text.append(bounded_text(request.pendingLabel, sizeof request.pendingLabel)).append(">");
    write_entry(" .... ReqCert FUN                    .... ", "Labels", text);
}

} // namespace zv
