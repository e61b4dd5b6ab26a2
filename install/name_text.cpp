// Distinguished names written with short names, rewritten to numeric OIDs.
#include <cstring>

#include "routines.h"
#include "util/text.h"

namespace zv {

struct NamePair {
    const char* pattern;
    const char* replacement;
};

NamePair DescrOid[] = {
    {" dnQualifier=", "2.5.4.46="},
    {"/dnQualifier=", ",2.5.4.46="},
    {"/Email=", ",1.2.840.113549.1.9.1="},
    {" D=", "2.5.4.13="},
    {" SN=", "2.5.4.5="},
    {" CN=", "2.5.4.3="},
    {" OU=", "2.5.4.11="},
    {" O=", "2.5.4.10="},
    {" S=", "2.5.4.4="},
    {" G=", "2.5.4.42="},
    {" C=", "2.5.4.6="},
};

} // namespace zv

namespace {

constexpr std::size_t TEXT_SIZE = 8216;
constexpr int NAMES = 16;

// ", X=" becomes "/X=".
void slashFor(char* text, const char* separator) {
    char* comma = strstrICase(text, separator);
    if (comma == nullptr) return;
    std::memmove(comma, comma + 1, std::strlen(comma));
    *comma = '/';
}

} // namespace

int CommaToSlash(char* dn, char*) {
    static constexpr char DESCRIPTION[] = ", D=";
    int rounds = 0;
    for (char* match = strstrICase(dn, DESCRIPTION); match != nullptr;
         match = strstrICase(match + 1, DESCRIPTION)) {
        slashFor(match + 1, ", N=");
        slashFor(match + 1, DESCRIPTION);
        ++rounds;
    }
    return rounds;
}

int DescrToOid(char* dn, char* work) {
    const int rounds = CommaToSlash(dn, work);
    for (bool replaced = true; replaced;) {
        replaced = false;
        // One occurrence a row in each pass.
        for (const auto& [pattern, replacement] : zv::DescrOid)
            replaced = zv::replaceFirst(dn, TEXT_SIZE, pattern, replacement, work) || replaced;
    }
    return rounds;
}

int ConvertiCertificato(char** dns) {
    if (dns == nullptr) return 0;
    char work[TEXT_SIZE];
    int result = 0;
    for (int i = 0; i < NAMES; ++i)
        if (dns[i] != nullptr) result = DescrToOid(dns[i], work);
    return result;
}
