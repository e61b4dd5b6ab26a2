#include "table.h"

#include "atr.h"
#include "failure.h"
#include "text.h"

#include <ini.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace zvcrypt {
namespace {

constexpr std::size_t longestReaderName = 127;

// A section while it is read.
struct Section {
    enum class Kind { card, reader } kind;
    std::string name;
    int line;
    std::optional<std::string> atr;
    std::optional<std::string> module;
    std::optional<std::string> flags;
    std::optional<std::string> longName;
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

    [[nodiscard]] Table parse(const std::string& fileName);

  private:
    static char* nextLine(char* line, int room, void* self) {
        return static_cast<TableParser*>(self)->feed(line, room);
    }
    static int keyAndValue(void* self, const char*, const char* key, const char* value) {
        return static_cast<TableParser*>(self)->take(key, value) ? 1 : 0;
    }

    char* feed(char* line, int room);
    bool take(std::string_view key, std::string_view value);
    void beginSection(std::string_view title);
    void endSection();
    void addCard(const Section& section);
    void addReader(const Section& section);
    void note(std::string problem) { noteAt(line_, std::move(problem)); }
    void noteAt(int line, std::string problem);

    std::string_view rest_;
    SoftwareReaders readers_;
    int line_ = 0;
    std::optional<Section> section_;
    std::string problem_;
    int problemLine_ = 0;
    Table table_;
};

void TableParser::noteAt(int line, std::string problem) {
    if (problemLine_ != 0) return;
    problemLine_ = line;
    problem_ = std::move(problem);
}

char* TableParser::feed(char* line, int room) {
    if (rest_.empty() || problemLine_ != 0) return nullptr;
    const auto end = std::min(rest_.find('\n'), rest_.size());
    const auto content = trimmed(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    ++line_;
    if (content.size() >= static_cast<std::size_t>(room) - 2)
        note("riga di più di " + std::to_string(room - 3) + " caratteri");
    else if (content.find('\0') != std::string_view::npos)
        note("non è una riga di testo");
    else if (content.starts_with('['))
        beginSection(content.substr(1));
    if (problemLine_ != 0) return nullptr;
    *std::copy(content.begin(), content.end(), line) = '\0';
    return line;
}

void TableParser::beginSection(std::string_view title) {
    endSection();
    const auto end = title.find(']');
    if (end == std::string_view::npos) return note("manca la parentesi ']'");
    const auto after = trimmed(title.substr(end + 1));
    if (!after.empty() && after[0] != ';' && after[0] != '#')
        return note("testo dopo la parentesi ']' (per un nome che la contiene c'è la chiave name)");
    title = trimmed(title.substr(0, end));
    const auto blank = std::min(title.find(' '), title.size());
    const auto word = title.substr(0, blank);
    const std::string name{trimmed(title.substr(blank))};
    if (word != "card" && word != "reader") return note("sezione sconosciuta: " + std::string(word));
    if (word == "reader" && readers_ == SoftwareReaders::refused)
        return note("un lettore software va nella configurazione, non qui");
    if (name.empty()) return note("manca il nome nel titolo della sezione");
    section_ =
        Section{word == "card" ? Section::Kind::card : Section::Kind::reader, name, line_, {}, {}, {}, {}};
}

bool TableParser::take(std::string_view key, std::string_view value) {
    if (!section_) {
        note("chiave fuori da ogni sezione");
        return false;
    }
    const bool card = section_->kind == Section::Kind::card;
    std::optional<std::string>* field = nullptr;
    if (key == "atr") field = &section_->atr;
    if (card && key == "module") field = &section_->module;
    if (card && key == "flags") field = &section_->flags;
    if (!card && key == "name") field = &section_->longName;
    if (field == nullptr)
        note("chiave sconosciuta: " + std::string(key));
    else if (*field)
        note("chiave ripetuta: " + std::string(key));
    else
        *field = value;
    return problemLine_ == 0;
}

void TableParser::endSection() {
    if (!section_) return;
    if (section_->kind == Section::Kind::card)
        addCard(*section_);
    else
        addReader(*section_);
    section_.reset();
}

void TableParser::addCard(const Section& section) {
    const auto pattern = normalisedAtr(section.atr.value_or(""), Wildcards::allowed);
    if (!pattern) return noteAt(section.line, "la sezione non ha un ATR valido");
    const std::string module = section.module.value_or("");
    if (module.empty() || module.find('/') != std::string::npos)
        return noteAt(section.line,
                      "la sezione non ha un nome di modulo valido (un nome di file senza cartella)");
    CardEntry entry{*pattern, module};
    std::string_view flags = section.flags ? std::string_view(*section.flags) : std::string_view();
    while (!(flags = trimmed(flags)).empty()) {
        const auto end = std::min(flags.find_first_of(" \t"), flags.size());
        const auto flag = flags.substr(0, end);
        flags.remove_prefix(end);
        if (flag != "cns" && flag != "touchsign")
            return noteAt(section.line, "indicatore sconosciuto: " + std::string(flag));
        (flag == "cns" ? entry.cns : entry.touchSign) = true;
    }
    table_.cards.push_back(std::move(entry));
}

void TableParser::addReader(const Section& section) {
    const auto atr = normalisedAtr(section.atr.value_or(""), Wildcards::refused);
    if (!atr) return noteAt(section.line, "la sezione non ha un ATR valido");
    const std::string name = section.longName.value_or(section.name);
    if (name.empty() || name.size() > longestReaderName || name.find('|') != std::string::npos)
        return noteAt(section.line, "nome di lettore non valido (da 1 a 127 caratteri, senza '|')");
    const bool known = std::any_of(table_.readers.begin(), table_.readers.end(),
                                   [&](const SoftwareReader& reader) { return reader.name == name; });
    if (known) return noteAt(section.line, "lettore ripetuto: " + name);
    table_.readers.push_back({name, *atr});
}

Table TableParser::parse(const std::string& fileName) {
    const int malformed = ini_parse_stream(&TableParser::nextLine, this, &TableParser::keyAndValue, this);
    if (malformed > 0 && malformed != problemLine_) {
        problemLine_ = malformed;
        problem_ = "riga che non è né un titolo né una chiave con il suo valore";
    }
    endSection();
    if (problemLine_ != 0)
        throw Failure(ZVC_ERR_CONFIG, fileName + ", riga " + std::to_string(problemLine_) + ": " + problem_);
    return std::move(table_);
}

} // namespace

Table parseTable(const std::string& text, const std::string& fileName, SoftwareReaders readers) {
    return TableParser(text, readers).parse(fileName);
}

} // namespace zvcrypt
