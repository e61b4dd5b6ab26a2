// Names: what a host gives as a subject, and what is made of a certificate's.
#include "inventory/names.h"

#include "api/dn_input.h"
#include "api/state.h"
#include "fuzz/input.h"
#include "request/subject.h"
#include "routines.h"
#include "util/name_forms.h"
#include "util/text.h"

#include <cstring>
#include <iterator>

namespace {

constexpr std::size_t NAME = 4096, INSTALLED_NAME = 8216;

bool has_short_name(std::string_view text) {
    const std::string terminated(text);
    return std::any_of(
        std::begin(zv::forms::CARD), std::end(zv::forms::CARD), [&](zv::NameAttribute attribute) {
            return strstrICase(terminated.c_str(), zv::name_attribute(attribute).slash) != nullptr;
        });
}

// No short name is left, and a second rewriting finds nothing more to do.
void rewrite_direct(const std::string& text) {
    fuzz::Room name(NAME, text), scratch(NAME);
    HOLDS(__DescrToOid(name.get(), scratch.get()) == 0 && !has_short_name(name.text()));
    const std::string once(name.text());
    __DescrToOid(name.get(), scratch.get());
    HOLDS(name.text() == once);
    for (const std::size_t size : {std::size_t{512}, std::size_t{2048}}) {
        fuzz::Room small(size, text);
        zv::rewrite_name(small.get(), size);
        HOLDS(!has_short_name(small.text()));
        // "/O=" grows most, to three times its length; what may not fit is cut, and may shrink afterwards.
        HOLDS(3 * text.size() >= size || small.text() == once);
    }
}

void rewrite_services_card(const std::string& text) {
    fuzz::Room name(NAME, text), scratch(NAME), small(512, text);
    const std::string before(name.text());
    const int result = __DescrToOidCNS(name.get(), scratch.get());
    HOLDS(result == (strstrICase(before.c_str(), "/CN=") == nullptr ? 1 : 0));
    HOLDS(result == 0 || name.text() == before);
    HOLDS(result != 0 || name.text().size() + 1 == NAME ||
          name.text().find("2.5.4.3=") != std::string_view::npos);
    zv::rewrite_name_cns(small.get(), small.size());
    HOLDS(small.text().size() < small.size());
}

void rewrite_installed(const std::string& text) {
    fuzz::Room name(INSTALLED_NAME, text), work(INSTALLED_NAME);
    const std::size_t length = name.text().size();
    const int slashes = CommaToSlash(name.get(), work.get());
    HOLDS(slashes >= 0 && name.text().size() <= length);
    HOLDS(DescrToOid(name.get(), work.get()) >= 0);
    for (const char* key : {" CN=", "/dnQualifier=", " dnQualifier=", "/Email=", " OU=", " C=", " S="})
        HOLDS(strstrICase(name.get(), key) == nullptr);
    HOLDS(name.text().size() < name.size());
}

void replace_all(std::string text, std::string from, std::string to) {
    replace(text.data(), from.data(), to.data());
    const std::string_view result = fuzz::field_of(zv::newstring);
    if (from.empty() || text.find(from) == std::string::npos)
        HOLDS(result == zv::cut_at_character(text, 1023));
    if (to.empty() && text.size() < 1024) HOLDS(result.size() <= text.size());
    if (!from.empty() && to == from && text.size() < 1024) HOLDS(result == text);
}

// Every value ends in its field and holds no line; the DER is there when there is a value.
void read_subject(const std::string& text) {
    fuzz::Room name(NAME, text);
    _RiempiDN(name.get(), static_cast<unsigned>(name.size()));
    HOLDS(name.text().size() <= 1023 && fuzz::field_of(zv::newstring).size() <= 1023);
    const datiDN& dn = zv::dNameRen;
    // Short enough to fit however its names and line breaks make it grow.
    const datiDN whole = zv::whole_name(text.c_str());
    HOLDS(text.size() > 400 || std::memcmp(&whole, &dn, sizeof dn) == 0);
    std::size_t filled = 0;
    const auto take = [&](const auto& field) {
        const std::string_view value = fuzz::field_of(field);
        HOLDS(value.find('\n') == std::string_view::npos);
        if (!value.empty()) ++filled;
    };
    for (const auto& unit : dn.orgUnit)
        take(unit);
    take(dn.country), take(dn.organization), take(dn.commonName), take(dn.description), take(dn.dnQualifier);
    take(dn.serialNumber), take(dn.givenName), take(dn.surname), take(dn.email), take(dn.locality);
    take(dn.stateOrProvince);
    const zv::der::Bytes own = zv::build_name(dn, zv::SUBJECT_TABLE_CNS);
    HOLDS(own.empty() == (filled == 0));
    take(dn.title), take(dn.pseudonym);
    const zv::der::Bytes der = zv::build_name(dn, zv::SUBJECT_TABLE);
    HOLDS(der.empty() == (filled == 0) && (der.empty() || der[0] == zv::der::TAG_SEQUENCE));
    // Units fill their places in turn.
    for (int i = 0; i + 1 < ZV_ORG_UNITS; ++i)
        HOLDS(dn.orgUnit[i + 1][0] == '\0' || text.find("2.5.4.11=") != text.rfind("2.5.4.11=") ||
              text.find("/OU=") != std::string::npos);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string from = input.line(), to = input.line(), text = input.text();
    replace_all(text, from, to);
    rewrite_direct(text);
    rewrite_services_card(text);
    rewrite_installed(text);
    read_subject(text);
    return 0;
}
