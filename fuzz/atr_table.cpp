// A host's table of cards: the card's ATR in the first line (whatever is hexadecimal in it), atr.ini behind it.
#include "fuzz/input.h"
#include "zvCrypt.h"

#include <cctype>

namespace {

struct Card {
    std::string module;
    bool cns = false, touch_sign = false;
};

std::string_view trimmed(std::string_view text) {
    const auto is_blank = [](char c) {
        return std::isspace(static_cast<unsigned char>(c)) != 0 || c == '\0';
    };
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool matches(std::string_view pattern, std::string_view atr) {
    std::size_t at = 0;
    for (const char c : pattern) {
        if (c == ' ' || c == '\t' || c == ':') continue;
        if (at == atr.size()) return false;
        const bool any = std::string_view(".Xx?").find(c) != std::string_view::npos;
        if (!any && std::toupper(static_cast<unsigned char>(c)) != atr[at]) return false;
        ++at;
    }
    return at == atr.size();
}

// The first entry that fits, in a table that was accepted: a second reading of the form, in few words.
bool first_match(std::string_view table, std::string_view atr, Card& found) {
    Card card;
    bool fits = false;
    while (!table.empty()) {
        std::string_view line = trimmed(table.substr(0, table.find('\n')));
        table.remove_prefix(std::min(table.find('\n'), table.size() - 1) + 1);
        if (line.starts_with("\xEF\xBB\xBF")) line = trimmed(line.substr(3));
        if (line.empty() || line[0] == ';' || line[0] == '#') continue;
        if (line[0] == '[') {
            if (fits) break;
            card = Card();
            continue;
        }
        const std::size_t separator = line.find_first_of("=:");
        const std::string_view key = trimmed(line.substr(0, separator));
        std::string_view value = line.substr(separator + 1);
        for (std::size_t i = 1; i < value.size(); ++i)
            if (value[i] == ';' && std::isspace(static_cast<unsigned char>(value[i - 1])) != 0)
                value = value.substr(0, i);
        value = trimmed(value);
        if (key == "atr") fits = matches(value, atr);
        if (key == "module") card.module = value;
        if (key == "flags") card.cns = value.find("cns") != std::string_view::npos;
        if (key == "flags") card.touch_sign = value.find("touchsign") != std::string_view::npos;
    }
    if (fits) found = card;
    return fits;
}

std::string atr_of(const std::string& line) {
    std::string atr;
    for (const char c : line)
        if (std::isxdigit(static_cast<unsigned char>(c)) != 0 && atr.size() < 66)
            atr += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (atr.size() % 2 != 0) atr.pop_back();
    return atr.size() < 4 ? "3B00" : atr;
}

int look_up(const char* folder, Card& card) {
    static char reader[] = "Fuzz";
    fuzz::Room module(ZVC_MODULE_NAME_SIZE);
    const int code = folder != nullptr ? kvGetPKCS11FromATRLite(reader, module.get(), folder)
                                       : kvGetPKCS11FromATR(reader, module.get());
    card = {std::string(module.text()), kvIsCNSINCARD() == 1, kvIsTOUCHSIGN() == 1};
    return code;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string configuration = fuzz::scratch() + "/zvcrypt.conf";
    static const std::string table = fuzz::scratch() + "/atr.ini";
    ::setenv("ZVCRYPT_CONF", configuration.c_str(), 1);
    fuzz::Input input(data, size);
    const std::string atr = atr_of(input.line());
    fuzz::write_file(configuration, "[reader Fuzz]\natr = " + atr + "\n");
    fuzz::write_file(table, input.bytes());
    Card built_in, card;
    HOLDS(look_up(nullptr, built_in) == 0);
    const int code = look_up(fuzz::scratch().c_str(), card);
    fuzz::Room reason(512);
    HOLDS(kvLastError(reason.get(), 512) == code && fuzz::is_utf8(reason.text()));
    if (code != 0) {
        HOLDS(code == ZVC_ERR_CONFIG && card.module.empty() && !card.cns && !card.touch_sign);
        const std::string_view place = reason.text().substr(reason.text().find(", riga ") + 7);
        const long line = std::strtol(std::string(place).c_str(), nullptr, 10);
        HOLDS(line >= 1 && line <= 1 + std::count(input.bytes().begin(), input.bytes().end(), '\n'));
        return 0;
    }
    Card expected = built_in;
    first_match(input.bytes(), atr, expected);
    HOLDS(card.module == expected.module.substr(0, ZVC_MODULE_NAME_SIZE - 1));
    HOLDS(card.cns == expected.cns && card.touch_sign == expected.touch_sign);
    return 0;
}
