#include "host/certificate_record.h"

#include <fmt/chrono.h>

#include <algorithm>

namespace zvhost {
namespace {

constexpr long SECONDS_OF_DAY = 24L * 60 * 60;

} // namespace

std::string holder_of(const CertificateRecord& record) {
    std::string name = record.subject.value("CN");
    if (record.kind == Kind::services) name.resize(std::min(name.find('/'), name.size()));
    return name.empty() ? record.subject.readable() : name;
}

std::string day_of(std::time_t time) {
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(time));
}

bool ends_within(std::time_t end, int days, std::time_t now) {
    return end - now <= days * SECONDS_OF_DAY;
}

long days_until(std::time_t time, std::time_t now) {
    const long seconds = time - now;
    return seconds >= 0 ? seconds / SECONDS_OF_DAY : -((SECONDS_OF_DAY - 1 - seconds) / SECONDS_OF_DAY);
}

} // namespace zvhost
