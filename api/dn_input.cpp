// The host's name text: brought to one attribute a line, then parsed into the request's name.
#include "api/dn_input.h"

#include "api/lines.h"
#include "api/state.h"
#include "util/name_forms.h"
#include "util/text.h"

#include <string>
#include <string_view>

namespace {

constexpr std::size_t MOST_TEXT = sizeof zv::newstring - 1;

void load_line(datiDN& name, std::string_view line, std::size_t& org_units) {
    for (const zv::NameAttribute attribute : zv::forms::HOST_LINE) {
        std::string_view value;
        if (!zv::value_behind(line, zv::name_attribute(attribute).oid, value)) continue;
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
        text = replaced<WholeText>(text, from, name_attribute(place.attribute).oid).get();
    for (const std::string_view start : zv::forms::HOST_LINE_STARTS)
        text = replaced<WholeText>(text, start, std::string("\n").append(start)).get();
    datiDN name{};
    load_text(name, text);
    return name;
}

void zv::replace_text(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty() || text.find(from) == std::string_view::npos)
        copy_text(newstring, cut_at_character(text, MOST_TEXT));
    else
        copy_text(newstring, replaced<BoundedText>(text, from, to).get());
}

void zv::clear_subject() {
    dNameRen = datiDN();
}

void zv::load_subject(std::string_view lines) {
    load_text(dNameRen, lines);
}

void zv::take_subject(std::span<char> dn) {
    const auto replace_in = [dn](std::string_view from, std::string_view to) {
        replace_text(or_empty(dn.data()), from, to);
        copy_text(dn.data(), dn.size(), newstring);
    };
    for (const auto& [from, place] : forms::HOST_NAMES)
        replace_in(from, name_attribute(place.attribute).oid);
    for (const std::string_view start : forms::HOST_LINE_STARTS)
        replace_in(start, std::string("\n").append(start));
    clear_subject();
    load_subject(newstring);
}
