// The C face of this folder.
#include "diag/log.h"
#include "diag/log_records.h"
#include "diag/messages.h"
#include "routines/diag.h"
#include "util/guarded.h"

namespace {

// Length 0: a text, nothing for null; a positive one: as many bytes; a negative one: none.
zv::Datum datum_of(const char* data, int length) {
    if (length != 0)
        return data != nullptr && length > 0 ? std::string_view(data, static_cast<std::size_t>(length)) : "";
    return data != nullptr ? zv::Datum(data) : std::nullopt;
}

} // namespace

void loadErrorCodes() {
    zv::load_messages();
}

char* getLogPath() {
    return zv::log_path();
}

void scriviLog(const char* message) {
    zv::write_line(message);
}

void WriteLog(const char* title, const char* data1, int len1, const char* data2, int len2) {
    zv::write_entry(title, datum_of(data1, len1), datum_of(data2, len2));
}

void WriteErr(const char* title, const char* data1, int len1, const char* data2, int len2) {
    zv::write_entry(title, datum_of(data1, len1), datum_of(data2, len2));
}

void LogDN(datiDN* dn) {
    if (dn != nullptr) zv::guarded([dn] { zv::log_subject(*dn); });
}

void LogLabels(REQRENIN* request) {
    if (request != nullptr) zv::guarded([request] { zv::log_labels(*request); });
}
