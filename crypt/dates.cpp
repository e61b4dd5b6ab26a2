#include "crypt/certificate_parts.h"
#include "crypt/failure.h"
#include "crypt/name.h"
#include "crypt/text.h"
#include "ossl/owners.h"

#include <cstdio>
#include <ctime>

namespace zvcrypt {
namespace {

std::string date_text(der::Span encoded) {
    const unsigned char* end = encoded.data();
    const ossl::Time time(d2i_ASN1_TIME(nullptr, &end, static_cast<long>(encoded.size())));
    std::tm parts{};
    if (!time || ASN1_TIME_to_tm(time.get(), &parts) != 1)
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Le date del certificato non sono leggibili");
    char text[80];
    (void)std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", parts.tm_mday, parts.tm_mon + 1,
                        parts.tm_year + 1900, parts.tm_hour, parts.tm_min, parts.tm_sec);
    return text;
}

struct Validity {
    std::string from;
    std::string to;
};

Validity validity(const CertificateParts& certificate) {
    return {date_text(certificate.not_before), date_text(certificate.not_after)};
}

} // namespace
} // namespace zvcrypt

int kvGetCertDate(unsigned char* der, unsigned long length, char* date1, char* date2) {
    return zvcrypt::run_operation([&] {
        zvcrypt::require_arguments({date1, date2});
        *date1 = *date2 = '\0';
        zvcrypt::require_arguments({der});
        const auto [from, to] = zvcrypt::validity(zvcrypt::take_apart({der, length}));
        zvcrypt::write_text(from, {date1, ZVC_DATE_SIZE});
        zvcrypt::write_text(to, {date2, ZVC_DATE_SIZE});
    });
}

int GiveMeCertDate(unsigned char* der, unsigned long length, char* date_text, int date_size,
                   char* description) {
    return zvcrypt::run_operation([&] {
        zvcrypt::require_arguments({description});
        *description = '\0';
        const auto dates = zvcrypt::output_buffer(date_text, date_size);
        zvcrypt::require_arguments({der});
        const auto certificate = zvcrypt::take_apart({der, length});
        const auto [from, to] = zvcrypt::validity(certificate);
        const std::string subject = zvcrypt::slash_name(certificate.subject);
        // Both are written before either may fail for want of room.
        const bool whole = zvcrypt::copy_text(from + " - " + to, dates);
        zvcrypt::write_text(subject, {description, ZVC_DESCRIPTION_SIZE});
        if (!whole) throw zvcrypt::Failure(ZVC_ERR_CUT, "Le date del certificato sono state troncate");
    });
}
