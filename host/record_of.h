#pragma once

#include "host/card_view.h"
#include "host/certificate_record.h"

#include <optional>

namespace zvhost {

// What there is to say of a certificate on a card; none when it cannot be read.
[[nodiscard]] std::optional<CertificateRecord> record_of(const CardObject& object, Kind kind);

} // namespace zvhost
