#include "words/words.h"

#include "words/english/rows.h"
#include "words/language.h"
#include "words/quotes.h"

#include <fmt/args.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <string_view>
#include <utility>

namespace words {
namespace {

using zvhost::Sentence, zvhost::Value, zvhost::Values;

Face shown_by = Face::terminal;

std::map<std::string_view, const char*> all_rows() {
    std::map<std::string_view, const char*> all;
    for (const Rows rows :
         {advice_rows(),  card_rows(),     command_line_rows(), desktop_rows(), doctor_rows(), files_rows(),
          install_rows(), library_rows(),  list_rows(),         module_rows(),  pin_rows(),    plainly_rows(),
          plan_rows(),    rehearse_rows(), remind_rows(),       remove_rows(),  renew_rows(),  request_rows(),
          subject_rows(), waiting_rows(),  window_rows()})
        for (const Row& row : rows)
            all.emplace(row.id, row.english);
    return all;
}

// The sentence in the reader's language; the identifier itself where there is none, which a test finds.
const char* text_of(const std::string& id) {
    static const auto all = all_rows();
    auto row = all.end();
    if (shown_by == Face::window) row = all.find(id + "@window");
    if (row == all.end()) row = all.find(id);
    return row == all.end() ? id.c_str() : row->second;
}

std::string in_place(const Value& value) {
    struct Worded {
        std::string operator()(std::monostate /*unknown*/) const { return "?"; }
        std::string operator()(bool held) const { return tr(held ? N_("yes") : N_("no")); }
        std::string operator()(long held) const { return std::to_string(held); }
        std::string operator()(const std::string& held) const { return held; }
        std::string operator()(const std::vector<std::string>& held) const {
            return fmt::format("{}", fmt::join(held, ", "));
        }
        std::string operator()(zvhost::Kind held) const { return of(held); }
        std::string operator()(zvhost::Moment held) const { return day_of(held.time); }
        std::string operator()(const std::vector<Sentence>& held) const { return of(held); }
    };
    return std::visit(Worded{}, value);
}

// A text whose places are others than the values is no reason to say nothing; a test finds it.
std::string with_values(const char* english, const Values& values) {
    fmt::dynamic_format_arg_store<fmt::format_context> places;
    for (const auto& [name, value] : values)
        places.push_back(fmt::arg(name.c_str(), in_place(value)));
    for (const std::string& text : {tr(english), std::string(english)})
        try {
            return fmt::vformat(text, places);
        } catch (const fmt::format_error&) {
        }
    return english;
}

// What the library says is Italian.
std::string quote(const Sentence& quoted) {
    const std::string text = in_place(quoted.values.front().second);
    const std::string meaning = spoken_language() == LANGUAGES.front() ? meaning_of(text) : "";
    if (meaning.empty()) return with_values(text_of(quoted.id), quoted.values);
    return of(Sentence{"quoted-with-meaning", {{"text", text}, {"meaning", meaning}}});
}

} // namespace

void face_is(Face face) {
    shown_by = face;
}

std::string of(const Sentence& sentence) {
    if (sentence.empty()) return {};
    if (sentence.id == "quoted") return quote(sentence);
    return with_values(text_of(sentence.id), sentence.values);
}

std::string of(const Sentence& sentence, Face face) {
    const Face before = std::exchange(shown_by, face);
    std::string text = of(sentence);
    shown_by = before;
    return text;
}

std::string of(const std::vector<Sentence>& sentences) {
    std::string text;
    for (const Sentence& sentence : sentences)
        text += (text.empty() ? "" : " ") + of(sentence);
    return text;
}

std::string of(zvhost::Kind kind) {
    for (const char* name : {N_("signature"), N_("authentication"), N_("services")})
        if (std::string_view(name) == zvhost::kind_name(kind)) return tr(name);
    return zvhost::kind_name(kind);
}

std::string title_of(zvhost::Kind kind) {
    if (kind == zvhost::Kind::signature) return tr("Signature certificate");
    if (kind == zvhost::Kind::authentication) return tr("Authentication certificate");
    return tr("Services certificate");
}

std::string day_of(std::time_t time) {
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(time));
}

} // namespace words
