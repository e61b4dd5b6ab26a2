// The host's name text: brought to one attribute a line, then parsed into the request's name.
#include <cstddef>
#include <string>
#include <string_view>

#include "api/dn_input.h"
#include "api/lines.h"
#include "api/state.h"
#include "routines.h"
#include "util/text.h"

namespace {

constexpr std::size_t MOST_TEXT = sizeof zv::newstring - 1;

struct Substitution {
    char from[30];
    char to[30];
};

constexpr Substitution NAMES[] = {
    {"/OU=", "2.5.4.11="},
    {"/emailAddress=", "1.2.840.113549.1.9.1="},
    {"/gn=", "2.5.4.42="},
    {"/serialNumber=", "2.5.4.5="},
};

// The last three have no "=": the line breaks in front of the bare OID.
constexpr char LINE_STARTS[][30] = {
    "2.5.4.6=", "2.5.4.10=", "2.5.4.11=", "2.5.4.3=", "2.5.4.13=", "2.5.4.46=", "1.2.840.113549.1.9.1=",
    "2.5.4.5=", "2.5.4.42=", "2.5.4.4=",  "2.5.4.7=", "2.5.4.12",  "2.5.4.65",  "2.5.4.8",
};

struct NameField {
    std::string_view prefix;
    std::size_t offset;
    std::size_t width;
};

#define ZV_FIELD(prefix, field)                                                                              \
    { prefix, offsetof(datiDN, field), sizeof datiDN::field }

// The first prefix found in a line, in this order, wins.
constexpr NameField FIELDS[] = {
    ZV_FIELD("2.5.4.3=", commonName),   ZV_FIELD("2.5.4.6=", country),
    ZV_FIELD("2.5.4.7=", locality),     ZV_FIELD("2.5.4.13=", description),
    ZV_FIELD("2.5.4.46=", dnQualifier), ZV_FIELD("1.2.840.113549.1.9.1=", email),
    ZV_FIELD("2.5.4.42=", givenName),   ZV_FIELD("2.5.4.10=", organization),
    ZV_FIELD("2.5.4.11=", orgUnit[0]),  ZV_FIELD("2.5.4.5=", serialNumber),
    ZV_FIELD("2.5.4.4=", surname),      ZV_FIELD("2.5.4.12=", title),
    ZV_FIELD("2.5.4.65=", pseudonym),   ZV_FIELD("2.5.4.8=", stateOrProvince),
};

#undef ZV_FIELD

void loadLine(datiDN& name, std::string_view line, int& orgUnits) {
    for (const NameField& field : FIELDS) {
        std::string_view value;
        if (!zv::valueBehind(line, field.prefix, value)) continue;
        std::size_t offset = field.offset;
        if (offset == offsetof(datiDN, orgUnit)) {
            if (orgUnits == ZV_ORG_UNITS) return;
            offset += static_cast<std::size_t>(orgUnits++) * field.width;
        }
        zv::copyText(reinterpret_cast<char*>(&name) + offset, field.width,
                     zv::cutAtCharacter(value, field.width - 1));
        return;
    }
}

void loadText(datiDN& name, std::string_view rest) {
    std::string_view line;
    int orgUnits = 0;
    while (zv::nextLine(rest, line))
        loadLine(name, line, orgUnits);
}

void replaceIn(char* dn, std::size_t size, const char* from, const char* to) {
    char pattern[32], replacement[32];
    zv::copyText(pattern, from);
    zv::copyText(replacement, to);
    replace(dn, pattern, replacement);
    zv::copyText(dn, size, zv::newstring);
}

// Grows a text of at most MOST_TEXT characters; what would not fit is refused whole.
class BoundedText {
  public:
    bool add(std::string_view part) {
        if (length_ + part.size() > MOST_TEXT) return false;
        part.copy(text_ + length_, part.size());
        length_ += part.size();
        return true;
    }
    [[nodiscard]] std::string_view get() const { return {text_, length_}; }

  private:
    char text_[MOST_TEXT];
    std::size_t length_ = 0;
};

// Takes whatever it is given.
class WholeText {
  public:
    bool add(std::string_view part) {
        text_ += part;
        return true;
    }
    [[nodiscard]] const std::string& get() const { return text_; }

  private:
    std::string text_;
};

template <typename Text> Text replaced(std::string_view rest, std::string_view from, std::string_view to) {
    Text result;
    for (std::size_t place = rest.find(from); place != std::string_view::npos; place = rest.find(from)) {
        if (!result.add(rest.substr(0, place))) return result;
        if (!result.add(to)) {
            result.add(rest.substr(place));
            return result;
        }
        rest.remove_prefix(place + from.size());
    }
    result.add(rest);
    return result;
}

} // namespace

datiDN zv::wholeName(std::string_view dn) {
    std::string text(dn);
    for (const auto& [from, to] : NAMES)
        text = replaced<WholeText>(text, from, to).get();
    for (const char* prefix : LINE_STARTS)
        text = replaced<WholeText>(text, prefix, std::string("\n") + prefix).get();
    datiDN name{};
    loadText(name, text);
    return name;
}

void replace(char* text, char* from, char* to) {
    const std::string_view whole = zv::orEmpty(text), pattern = zv::orEmpty(from);
    if (pattern.empty() || whole.find(pattern) == std::string_view::npos)
        zv::copyText(zv::newstring, zv::cutAtCharacter(whole, MOST_TEXT));
    else
        zv::copyText(zv::newstring, replaced<BoundedText>(whole, pattern, zv::orEmpty(to)).get());
}

void ResettaDN() {
    zv::dNameRen = datiDN();
}

void CaricaDN(char* text) {
    loadText(zv::dNameRen, zv::orEmpty(text));
}

void _RiempiDN(char* dn, unsigned int size) {
    for (const auto& [from, to] : NAMES)
        replaceIn(dn, size, from, to);
    for (const char* prefix : LINE_STARTS) {
        char broken[32] = "\n";
        zv::appendText(broken, prefix);
        replaceIn(dn, size, prefix, broken);
    }
    ResettaDN();
    CaricaDN(zv::newstring);
}
