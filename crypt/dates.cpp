#include "certificate_parts.h"
#include "failure.h"
#include "name.h"
#include "text.h"

#include <cstdio>
#include <ctime>

namespace zvcrypt {
namespace {

std::string dateText(der::Span encoded) {
    const unsigned char* end = encoded.data();
    const TimePtr time(d2i_ASN1_TIME(nullptr, &end, static_cast<long>(encoded.size())));
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
    return {dateText(certificate.notBefore), dateText(certificate.notAfter)};
}

} // namespace
} // namespace zvcrypt

int kvGetCertDate(unsigned char* der, unsigned long length, char* date1, char* date2) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({date1, date2});
        *date1 = *date2 = '\0';
        zvcrypt::requireArguments({der});
        const auto [from, to] = zvcrypt::validity(zvcrypt::takeApart({der, length}));
        zvcrypt::writeText(from, {date1, ZVC_DATE_SIZE});
        zvcrypt::writeText(to, {date2, ZVC_DATE_SIZE});
    });
}

int GiveMeCertDate(unsigned char* der, unsigned long length, char* dateText, int dateSize,
                   char* description) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({description});
        *description = '\0';
        const auto dates = zvcrypt::outputBuffer(dateText, dateSize);
        zvcrypt::requireArguments({der});
        const auto certificate = zvcrypt::takeApart({der, length});
        const auto [from, to] = zvcrypt::validity(certificate);
        const std::string subject = zvcrypt::slashName(certificate.subject);
        // Both are written before either may fail for want of room.
        const bool whole = zvcrypt::copyText(from + " - " + to, dates);
        zvcrypt::writeText(subject, {description, ZVC_DESCRIPTION_SIZE});
        if (!whole) throw zvcrypt::Failure(ZVC_ERR_CUT, "Le date del certificato sono state troncate");
    });
}
