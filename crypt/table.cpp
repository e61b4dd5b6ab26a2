#include "crypt/table.h"

#include "crypt/failure.h"
#include "crypt/text.h"

#include <ini.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>

namespace zvcrypt {
namespace {

constexpr std::size_t LONGEST_READER_NAME = 127;

// A section while it is read; only the record of its kind is filled.
struct Section {
    bool is_card;
    int line;
    std::set<std::string, std::less<>> keys;
    CardEntry card;
    SoftwareReader reader;
};

// Feeds inih line by line. inih knows neither where a section begins without a key nor that it cut a line,
// and takes an indented line for the continuation of the one before: the titles, the length and the
// indentation are settled here, inih splits keys, values and comments. No exception may pass through it, so
// the first problem is noted and ends the input.
class TableParser {
  public:
    TableParser(std::string_view text, SoftwareReaders readers) : rest_(text), readers_(readers) {
        if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
    }

    [[nodiscard]] Table parse(const std::string& file_name);

  private:
    static char* next_line(char* line, int room, void* self) {
        return static_cast<TableParser*>(self)->feed(line, room);
    }
    static int key_and_value(void* self, const char*, const char* key, const char* value) {
        return static_cast<TableParser*>(self)->take(key, value) ? 1 : 0;
    }

    char* feed(char* line, int room);
    bool take(std::string_view key, std::string_view value);
    void begin_section(std::string_view title);
    void end_section();
    void set_card(std::string_view key, std::string_view value);
    void set_reader(std::string_view key, std::string_view value);
    void set_flags(std::string_view flags);
    void note(std::string problem) { note_at(line_, std::move(problem)); }
    void note_at(int line, std::string problem);

    std::string_view rest_;
    SoftwareReaders readers_;
    int line_ = 0;
    std::optional<Section> section_;
    std::string problem_;
    int problem_line_ = 0;
    Table table_;
};

void TableParser::note_at(int line, std::string problem) {
    if (problem_line_ != 0) return;
    problem_line_ = line;
    problem_ = std::move(problem);
}

char* TableParser::feed(char* line, int room) {
    if (rest_.empty() || problem_line_ != 0) return nullptr;
    const auto end = std::min(rest_.find('\n'), rest_.size());
    const auto whole = rest_.substr(0, end);
    const auto content = trimmed(whole);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    ++line_;
    if (content.size() >= static_cast<std::size_t>(room) - 2)
        note("riga di più di " + std::to_string(room - 3) + " caratteri");
    else if (whole.find('\0') != std::string_view::npos)
        note("non è una riga di testo");
    else if (content.starts_with('['))
        begin_section(content.substr(1));
    if (problem_line_ != 0) return nullptr;
    *std::copy(content.begin(), content.end(), line) = '\0';
    return line;
}

void TableParser::begin_section(std::string_view title) {
    end_section();
    if (problem_line_ != 0) return;
    const auto end = title.find(']');
    if (end == std::string_view::npos) return note("manca la parentesi ']'");
    const auto after = trimmed(title.substr(end + 1));
    if (!after.empty() && after[0] != ';' && after[0] != '#')
        return note("testo dopo la parentesi ']' (per un nome che la contiene c'è la chiave name)");
    title = trimmed(title.substr(0, end));
    const auto blank = std::min(title.find(' '), title.size());
    const auto word = title.substr(0, blank);
    const auto name = trimmed(title.substr(blank));
    if (word != "card" && word != "reader") return note("sezione sconosciuta: " + std::string(word));
    if (word == "reader" && readers_ == SoftwareReaders::refused)
        return note("un lettore software va nella configurazione, non qui");
    if (name.empty()) return note("manca il nome nel titolo della sezione");
    section_.emplace(Section{word == "card", line_, {}, {}, {}});
    if (!section_->is_card) set_reader("name", name);
}

bool TableParser::take(std::string_view key, std::string_view value) {
    if (!section_)
        note("chiave fuori da ogni sezione");
    else if (!section_->keys.emplace(key).second)
        note("chiave ripetuta: " + std::string(key));
    else if (section_->is_card)
        set_card(key, value);
    else
        set_reader(key, value);
    return problem_line_ == 0;
}

void TableParser::set_card(std::string_view key, std::string_view value) {
    if (key == "atr") {
        const auto pattern = normalised_atr(value, Wildcards::allowed);
        if (!pattern) return note("ATR non valido (da 2 a 33 byte in esadecimale)");
        section_->card.pattern = PackedAtr(*pattern);
    } else if (key == "module") {
        if (value.empty() || value.find('/') != std::string_view::npos)
            return note("nome di modulo non valido (un nome di file, senza cartella)");
        section_->card.module = value;
    } else if (key == "flags") {
        set_flags(value);
    } else {
        note("chiave sconosciuta: " + std::string(key));
    }
}

void TableParser::set_flags(std::string_view flags) {
    while (!(flags = trimmed(flags)).empty()) {
        const auto end = std::min(flags.find_first_of(" \t"), flags.size());
        const auto flag = flags.substr(0, end);
        flags.remove_prefix(end);
        if (flag != "cns" && flag != "touchsign") return note("indicatore sconosciuto: " + std::string(flag));
        (flag == "cns" ? section_->card.cns : section_->card.touch_sign) = true;
    }
}

void TableParser::set_reader(std::string_view key, std::string_view value) {
    if (key == "atr") {
        const auto atr = normalised_atr(value, Wildcards::refused);
        if (!atr) return note("ATR non valido (da 2 a 33 byte in esadecimale)");
        section_->reader.atr = *atr;
    } else if (key == "name") {
        if (value.empty() || value.size() > LONGEST_READER_NAME || value.find('|') != std::string_view::npos)
            return note("nome di lettore non valido (da 1 a 127 caratteri, senza '|')");
        section_->reader.name = value;
    } else {
        note("chiave sconosciuta: " + std::string(key));
    }
}

void TableParser::end_section() {
    if (!section_ || problem_line_ != 0) return;
    const Section section = std::move(*section_);
    section_.reset();
    if (!section.keys.contains("atr")) return note_at(section.line, "la sezione non ha la chiave atr");
    if (section.is_card) {
        if (!section.keys.contains("module"))
            return note_at(section.line, "la sezione non ha la chiave module");
        table_.cards.push_back(section.card);
        return;
    }
    const bool known =
        std::any_of(table_.readers.begin(), table_.readers.end(),
                    [&](const SoftwareReader& reader) { return reader.name == section.reader.name; });
    if (known) return note_at(section.line, "lettore ripetuto: " + section.reader.name);
    table_.readers.push_back(section.reader);
}

Table TableParser::parse(const std::string& file_name) {
    const int malformed = ini_parse_stream(&TableParser::next_line, this, &TableParser::key_and_value, this);
    if (malformed > 0 && malformed != problem_line_) {
        problem_line_ = malformed;
        problem_ = "riga che non è né un titolo né una chiave con il suo valore";
    }
    end_section();
    if (problem_line_ != 0)
        throw Failure(ZVC_ERR_CONFIG,
                      file_name + ", riga " + std::to_string(problem_line_) + ": " + problem_);
    return std::move(table_);
}

} // namespace

Table parse_table(const std::string& text, const std::string& file_name, SoftwareReaders readers) {
    return TableParser(text, readers).parse(file_name);
}

} // namespace zvcrypt
