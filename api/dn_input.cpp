// The host's name text: brought to one attribute a line, then parsed into the request's name.
#include "api/dn_input.h"

#include "api/lines.h"
#include "api/state.h"
#include "routines/api.h"
#include "util/name_forms.h"
#include "util/text.h"

#include <string>
#include <string_view>

namespace {

constexpr std::size_t MOST_TEXT = sizeof zv::newstring - 1;

void load_line(datiDN& name, std::string_view line, std::size_t& org_units) {
    for (const zv::NameAttribute attribute : zv::forms::HOST_LINE) {
        std::string_view value;
        if (!zv::value_behind(line, zv::nameAttribute(attribute).oid, value)) continue;
        zv::NamePlace place = attribute;
        if (attribute == zv::NameAttribute::orgUnit) {
            if (org_units == ZV_ORG_UNITS) return;
            place.unit = org_units++;
        }
        zv::set_name_text(name, place, zv::cut_at_character(value, place.width() - 1));
        return;
    }
}

void load_text(datiDN& name, std::string_view rest) {
    std::string_view line;
    std::size_t org_units = 0;
    while (zv::next_line(rest, line))
        load_line(name, line, org_units);
}

void replace_in(char* dn, std::size_t size, std::string_view from, std::string_view to) {
    char pattern[32], replacement[32];
    zv::copy_text(pattern, from);
    zv::copy_text(replacement, to);
    replace(dn, pattern, replacement);
    zv::copy_text(dn, size, zv::newstring);
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

datiDN zv::whole_name(std::string_view dn) {
    std::string text(dn);
    for (const auto& [from, place] : zv::forms::HOST_NAMES)
        text = replaced<WholeText>(text, from, nameAttribute(place.attribute).oid).get();
    for (const std::string_view start : zv::forms::HOST_LINE_STARTS)
        text = replaced<WholeText>(text, start, std::string("\n").append(start)).get();
    datiDN name{};
    load_text(name, text);
    return name;
}

void replace(char* text, char* from, char* to) {
    const std::string_view whole = zv::or_empty(text), pattern = zv::or_empty(from);
    if (pattern.empty() || whole.find(pattern) == std::string_view::npos)
        zv::copy_text(zv::newstring, zv::cut_at_character(whole, MOST_TEXT));
    else
        zv::copy_text(zv::newstring, replaced<BoundedText>(whole, pattern, zv::or_empty(to)).get());
}

void ResettaDN() {
    zv::dNameRen = datiDN();
}

void CaricaDN(char* text) {
    load_text(zv::dNameRen, zv::or_empty(text));
}

void _RiempiDN(char* dn, unsigned int size) {
    for (const auto& [from, place] : zv::forms::HOST_NAMES)
        replace_in(dn, size, from, zv::nameAttribute(place.attribute).oid);
    for (const std::string_view start : zv::forms::HOST_LINE_STARTS) {
        char broken[32] = "\n";
        zv::append_text(broken, start);
        replace_in(dn, size, start, broken);
    }
    ResettaDN();
    CaricaDN(zv::newstring);
}
