#pragma once

#include "records.h"

// Records as log entries.
namespace zv {

// The attributes down to the e-mail address.
void log_subject(const datiDN& subject);

void log_labels(const REQRENIN& request);

} // namespace zv
