#include "cli/assuan.h"

#include "cli/read_char.h"
#include "host/error.h"

#include <fmt/format.h>

#include <charconv>

namespace cli {
namespace {

constexpr std::size_t LONGEST_LINE = 1000; // the protocol's, its end not counted

std::string escaped(std::string_view text) {
    std::string line;
    for (const char c : text)
        line += c == '%' || static_cast<unsigned char>(c) < 0x20
                    ? fmt::format("%{:02X}", static_cast<unsigned char>(c))
                    : std::string(1, c);
    return line;
}

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    throw Assuan::Failure{Assuan::Failure::nonsense};
}

Assuan::Answer refusal(std::string_view rest) {
    Assuan::Answer answer;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), answer.code);
    if (error != std::errc{}) throw Assuan::Failure{Assuan::Failure::nonsense};
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    answer.text = rest.substr(std::min(rest.find_first_not_of(' '), rest.size()));
    return answer;
}

bool is_word(std::string_view line, std::string_view word) {
    return line == word || (line.starts_with(word) && line[word.size()] == ' ');
}

} // namespace

Assuan::Assuan(const std::string& program, std::chrono::milliseconds patience)
    : program_(program), until_(Clock::now() + patience) {
    if (!answer(nullptr).ok) throw Failure{Failure::nonsense};
}

Assuan::Answer Assuan::ask(std::string_view command, std::string_view text,
                           std::chrono::milliseconds patience, Pin* data) {
    std::string line(command);
    if (!text.empty()) line.append(" ").append(escaped(text));
    line.resize(std::min(line.size(), LONGEST_LINE));
    if (!program_.tell(line + "\n")) throw Failure{Failure::ended};
    until_ = Clock::now() + patience;
    return answer(data);
}

Assuan::Answer Assuan::answer(Pin* data) {
    for (;;) {
        const std::string said = line(data);
        if (is_word(said, "OK")) return {true, 0, {}};
        if (said.starts_with("ERR ")) return refusal(std::string_view(said).substr(4));
        const bool passed_over = said.empty() || said == "D " || said.front() == '#' || is_word(said, "S");
        if (!passed_over) throw Failure{Failure::nonsense};
    }
}

std::string Assuan::line(Pin* data) {
    std::string text;
    for (char c = 0; (c = next()) != '\n';) {
        text += c;
        if (text.size() > LONGEST_LINE) throw Failure{Failure::nonsense};
        if (text != "D ") continue;
        if (data == nullptr) throw Failure{Failure::nonsense};
        take_data(*data);
        break;
    }
    return text;
}

void Assuan::take_data(Pin& data) {
    for (char c = 0; (c = next()) != '\n';)
        data.add(c == '%' ? unescaped() : c);
}

char Assuan::unescaped() {
    const int high = digit(next());
    return static_cast<char>(high * 16 + digit(next()));
}

char Assuan::next() {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until_ - Clock::now());
    const EndingSignals::Came came = signals_.wait_for_input(program_.output(), left);
    if (came == EndingSignals::Came::signal) throw Error(Exit::refused, Sentence("pin-stopped", {}));
    if (came == EndingSignals::Came::nothing) throw Failure{Failure::silent};
    char c = 0;
    if (read_char(program_.output(), c) != 1) throw Failure{Failure::ended};
    return c;
}

} // namespace cli
