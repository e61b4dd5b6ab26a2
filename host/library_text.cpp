#include "host/library_text.h"

#include "host/advice.h"
#include "pkcs11.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <fmt/format.h>

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

Sentence own_words(int code) {
    switch (code) {
    case ZV_FAILED:
        return {"library-refused", {}};
    case ZV_UNSUPPORTED:
        return {"library-unsupported", {}};
    case ZV_UNUSABLE:
        return {"library-unusable", {}};
    case ZV_NOT_SENT:
        return {"library-not-sent", {}};
    default:
        return {"library-silent", {}};
    }
}

Sentence quoted(const std::string& text) {
    return {"quoted", {{"text", text}}};
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

// The texts that the library left, one or both; none: nothing to be told.
Sentence own_texts() {
    const std::string first = one_line(szSockMsg, ZV_MESSAGE_SIZE);
    const std::string second = one_line(szBuffErr, ZV_MESSAGE_SIZE);
    if (first.empty() && second.empty()) return {};
    if (first.empty() || second.empty()) return quoted(first + second);
    return {"two-quotes", {{"first", std::vector{quoted(first)}}, {"second", std::vector{quoted(second)}}}};
}

std::vector<Sentence> because(Sentence what, Value code) {
    return {{"because", {{"what", std::vector{std::move(what)}}, {"code", std::move(code)}}}};
}

} // namespace

void forget_library_texts() {
    szBuffErr[0] = '\0';
    szSockMsg[0] = '\0';
}

std::vector<Sentence> library_reason(int code) {
    Sentence own = own_texts();
    const std::string message = table_text(code);
    if (own.empty()) return because(message.empty() ? own_words(code) : quoted(message), shown(code));
    const bool told = one_line(szSockMsg, ZV_MESSAGE_SIZE).find(message) != std::string::npos;
    if (told) return because(std::move(own), shown(code));
    return because(std::move(own),
                   std::vector{Sentence{"code-with-message",
                                        {{"code", shown(code)}, {"message", std::vector{quoted(message)}}}}});
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

std::vector<Sentence> crypto_reason(int code) {
    std::array<char, ZV_MESSAGE_SIZE> buffer{};
    kvLastError(buffer.data(), static_cast<int>(buffer.size()));
    const std::string text = one_line(buffer.data(), buffer.size());
    if (text.empty()) return {{"code-alone", {{"code", shown(code)}}}};
    return because(quoted(text), shown(code));
}

} // namespace zvhost
