// The text helpers, against plain versions of themselves.
#include "fuzz/input.h"
#include "routines.h"
#include "util/text.h"

#include <cctype>

namespace {

std::string without_blanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text.erase(0, text.find_first_not_of(' '));
}

std::string percent_encoded(const std::string& text) {
    std::string encoded;
    char byte[4];
    for (const char c : text) {
        std::snprintf(byte, sizeof byte, "%%%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        encoded += byte;
    }
    return encoded;
}

std::string unescaped(std::string text) {
    const std::unique_ptr<char, decltype(&std::free)> decoded(UnEscape(text.data()), &std::free);
    HOLDS(std::strlen(decoded.get()) <= text.size());
    return decoded.get();
}

// A value is a part of the text without blanks around it; one that was put in, escaped, comes out.
void fields(std::string text, std::string name, std::string pair, std::string between) {
    fuzz::Room output(text.size() + 1);
    const int code = NWGetOpt(text.data(), name.data(), output.get(), pair.data(), between.data());
    HOLDS(code == 0 || code == -1 || code == -4);
    HOLDS(code == 0 || output.text().empty());
    HOLDS(text.find(output.text()) != std::string::npos &&
          output.text() == without_blanks(std::string(output.text())));
    HOLDS(pair.empty() || output.text().find(pair) == std::string_view::npos);
    HOLDS(code != -1 || text.find(name + between) != 0 || name.empty() || between.empty() ||
          name != without_blanks(name) || (name + between).find(between) != name.size());
    HOLDS(Valore(text.data(), name.data(), output.get()) == 0);
    HOLDS(output.text().size() <= text.size());
    const std::string encoded = percent_encoded(text);
    HOLDS(unescaped(encoded) == text);
    (void)unescaped(text);
    std::string pairs = "x=1&campo=" + encoded + "&y=", wanted = "campo";
    fuzz::Room value(pairs.size() + 1);
    Valore(pairs.data(), wanted.data(), value.get());
    HOLDS(value.text() == without_blanks(text));
}

void changed_in_place(const std::string& text) {
    const auto changed = [&text](char* (*change)(char*)) {
        fuzz::Room room(text.size() + 1, text);
        HOLDS(change(room.get()) == room.get());
        return std::string(room.text());
    };
    HOLDS(changed(AllTrim) == without_blanks(text));
    HOLDS(without_blanks(changed(RTrim)) == without_blanks(text) && !changed(RTrim).ends_with(' '));
    HOLDS(text.ends_with(changed(LTrim)) && !changed(LTrim).starts_with(' '));
    HOLDS(changed(VirgolaToPunto).find(',') == std::string::npos);
    HOLDS(changed(Converte).size() <= text.size());
    const std::string upper = changed(_strupr), lower = changed(_strlwr);
    for (std::size_t i = 0; i < text.size(); ++i) {
        HOLDS(upper[i] == static_cast<char>(std::toupper(static_cast<unsigned char>(text[i]))));
        HOLDS(lower[i] == static_cast<char>(std::tolower(static_cast<unsigned char>(text[i]))));
    }
}

void joined(const std::string& first, const std::string& second, long value) {
    HOLDS(CatSZtoSZ(first.c_str(), second.c_str()) == (first + second).substr(0, 255));
    const std::string digits = std::to_string(value);
    const std::string plain = first.substr(0, 127 - digits.size()) + digits;
    const std::string marked = first.substr(0, 125 - digits.size()) + "0x" + digits;
    HOLDS(CatLtoA(first.c_str(), value) == plain && CatLtoAHex1(first.c_str(), value) == marked);
    HOLDS(CatLtoAHex2(first.c_str(), value) == marked);
    // A result may be the next call's prefix.
    const std::string again = CatLtoAHex2(CatILtoAbuffHex2, value);
    HOLDS(again == marked.substr(0, 125 - digits.size()) + "0x" + digits);
    fuzz::Room room(first.size() + 23);
    HOLDS(CatLtoAHex(room.get(), first.c_str(), value) == first + "0x" + digits);
    HOLDS(CatItoA(first.c_str(), static_cast<int>(value)) != nullptr && std::strlen(CatILtoAbuff) < 128);
}

void searched(const std::string& text, const std::string& part, std::size_t size) {
    std::string upper = text, wanted = part;
    const std::size_t place = std::string(_strupr(upper.data())).find(_strupr(wanted.data()));
    const char* found = strstrICase(text.c_str(), part.c_str());
    HOLDS(place == std::string::npos ? found == nullptr : found == text.c_str() + place);
    fuzz::Room name(size, text), scratch(size);
    const std::string before(name.text());
    const bool replaced = zv::replace_first(name.get(), size, part.c_str(), "2.5.4.3=", scratch.get());
    HOLDS(name.text().size() < size && (replaced || name.text() == before));
    fuzz::Room copy(size);
    HOLDS(zv::copy_text(copy.get(), size, text) == (text.size() < size));
    HOLDS(copy.text() == text.substr(0, size - 1));
    HOLDS(zv::append_text(copy.get(), size, part) == (copy.text() == text + part || part.empty()));
}

void numbers(std::string text) {
    fuzz::Room output(21);
    XX(text.data(), output.get());
    HOLDS(output.text() == X1(text.data()) && output.text() == X3(text.data()));
    HOLDS(output.text().empty() == text.empty());
    const long date = DataToLong(text.data());
    HOLDS(date >= -9999L * 10000 - 200 && date <= 9999L * 10000 + 9999);
    const int length = HexLen(text.data(), static_cast<int>(text.size() + 1));
    HOLDS(length == static_cast<int>(text.size()));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string name = input.line(), pair = input.line(), between = input.line(), text = input.text();
    fields(text, name, pair, between);
    changed_in_place(text);
    joined(text, name, std::strtol(between.c_str(), nullptr, 10));
    searched(text, name, 1 + std::strtoul(pair.c_str(), nullptr, 10) % 512);
    numbers(text);
    return 0;
}
