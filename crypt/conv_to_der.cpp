#include "certificate_parts.h"
#include "failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

struct Output {
    der::Span value;
    char* buffer;
    unsigned long* length;
};

} // namespace
} // namespace zvcrypt

int ConvToDer(unsigned char* der, unsigned long derLength, char* subject, unsigned long* subjectLength,
              char* issuer, unsigned long* issuerLength, char* serial, unsigned long* serialLength) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({der, subject, subjectLength, issuer, issuerLength, serial, serialLength});
        const auto parts = zvcrypt::takeApart({der, derLength});
        const zvcrypt::Output outputs[] = {{parts.subject, subject, subjectLength},
                                           {parts.issuer, issuer, issuerLength},
                                           {parts.serial, serial, serialLength}};
        for (const auto& output : outputs)
            if (output.value.size() > *output.length)
                throw zvcrypt::Failure(ZVC_ERR_ROOM, "Titolare, emittente o numero di serie troppo lungo");
        for (const auto& output : outputs) {
            std::copy(output.value.begin(), output.value.end(), output.buffer);
            *output.length = output.value.size();
        }
    });
}
