// The host's name text: brought to one attribute a line, then parsed into the request's name.
#include <string>
#include <string_view>

#include "api/dn_input.h"
#include "api/lines.h"
#include "api/state.h"
#include "routines.h"
#include "util/name_forms.h"
#include "util/text.h"

namespace {

constexpr std::size_t MOST_TEXT = sizeof zv::newstring - 1;

void loadLine(datiDN& name, std::string_view line, std::size_t& orgUnits) {
    for (const zv::NameAttribute attribute : zv::forms::HOST_LINE) {
        std::string_view value;
        if (!zv::valueBehind(line, zv::nameAttribute(attribute).oid, value)) continue;
        zv::NamePlace place = attribute;
        if (attribute == zv::NameAttribute::orgUnit) {
            if (orgUnits == ZV_ORG_UNITS) return;
            place.unit = orgUnits++;
        }
        zv::setNameText(name, place, zv::cutAtCharacter(value, place.width() - 1));
        return;
    }
}

void loadText(datiDN& name, std::string_view rest) {
    std::string_view line;
    std::size_t orgUnits = 0;
    while (zv::nextLine(rest, line))
        loadLine(name, line, orgUnits);
}

void replaceIn(char* dn, std::size_t size, std::string_view from, std::string_view to) {
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
    for (const auto& [from, place] : zv::forms::HOST_NAMES)
        text = replaced<WholeText>(text, from, nameAttribute(place.attribute).oid).get();
    for (const std::string_view start : zv::forms::HOST_LINE_STARTS)
        text = replaced<WholeText>(text, start, std::string("\n").append(start)).get();
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
    for (const auto& [from, place] : zv::forms::HOST_NAMES)
        replaceIn(dn, size, from, zv::nameAttribute(place.attribute).oid);
    for (const std::string_view start : zv::forms::HOST_LINE_STARTS) {
        char broken[32] = "\n";
        zv::appendText(broken, start);
        replaceIn(dn, size, start, broken);
    }
    ResettaDN();
    CaricaDN(zv::newstring);
}
