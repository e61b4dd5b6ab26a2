#include "host/library_text.h"

#include "host/advice.h"
#include "pkcs11.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <cstring>
#include <vector>

namespace zvhost {
namespace {

// Line breaks inside the library's texts would break the one sentence that they end up in.
std::string one_line(const char* text, std::size_t size) {
    std::string line;
    for (const char c : std::string(text, strnlen(text, size))) {
        const bool blank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
        if (!blank)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

// 1 and 100 are PKCS#11 results by number, but the library means something else by them.
std::string table_text(int code) {
    if (code <= ZV_FAILED || code == ZV_UNSUPPORTED || code >= ZV_MESSAGES) return {};
    return one_line(errorMessages[code], ZV_MESSAGE_SIZE);
}

const char* own_words(int code) {
    switch (code) {
    case ZV_FAILED:
        return "the step was refused";
    case ZV_UNSUPPORTED:
        return "the card is not supported, or a temporary file could not be used";
    case ZV_UNUSABLE:
        return "no usable module, or no slot for the reader";
    case ZV_NOT_SENT:
        return "stopped before it was sent, or the result is too large";
    default:
        return "no reason was given";
    }
}

// Key generation tells its own result in the text alone.
bool no_room(int code) {
    constexpr int full = CKR_DEVICE_MEMORY;
    const std::string text = one_line(szSockMsg, ZV_MESSAGE_SIZE);
    return code == full || text.find("(error 31)") != std::string::npos ||
           (!table_text(full).empty() && text.find(table_text(full)) != std::string::npos);
}

std::string shown(int code) {
    return code < 0 ? std::to_string(code) : fmt::format("{:#x}", code);
}

} // namespace

void forget_library_texts() {
    szBuffErr[0] = '\0';
    szSockMsg[0] = '\0';
}

std::string library_reason(int code) {
    std::vector<std::string> quotes;
    for (const char* source : {szSockMsg, szBuffErr}) {
        const std::string text = one_line(source, ZV_MESSAGE_SIZE);
        if (!text.empty()) quotes.push_back(fmt::format("\"{}\"", text));
    }
    const std::string meaning = table_text(code);
    if (quotes.empty() && meaning.empty()) return fmt::format(": {} ({})", own_words(code), shown(code));
    if (quotes.empty()) return fmt::format(": \"{}\" ({})", meaning, shown(code));
    if (meaning.empty()) return fmt::format(": {} ({})", fmt::join(quotes, ", "), shown(code));
    return fmt::format(": {} ({}, \"{}\")", fmt::join(quotes, ", "), shown(code), meaning);
}

Error library_stop(const std::string& id, int code) {
    Error stop(Exit::failed, {id, {{"reason", library_reason(code)}}});
    stop.code = code;
    stop.logged = true;
    if (no_room(code)) stop.advice.push_back(make_room());
    return stop;
}

Error library_stop(const std::string& id, int code, Advice advice) {
    Error stop = library_stop(id, code);
    stop.advice.push_back(std::move(advice));
    return stop;
}

std::string crypto_reason(int code) {
    std::array<char, ZV_MESSAGE_SIZE> buffer{};
    kvLastError(buffer.data(), static_cast<int>(buffer.size()));
    const std::string text = one_line(buffer.data(), buffer.size());
    if (text.empty()) return fmt::format(" ({})", shown(code));
    return fmt::format(": \"{}\" ({})", text, shown(code));
}

} // namespace zvhost
