#include "simcard/common/object_order.h"

#include "simcard/common/card_folder.h"
#include "simcard/common/hexadecimal.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr const char* ORDER_FILE = "objects";

// The bytes of an attribute; empty when the object does not have it or keeps it to itself.
std::string attribute(const CK_FUNCTION_LIST& hsm, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
                      CK_ATTRIBUTE_TYPE type) {
    std::array<char, 4096> room;
    CK_ATTRIBUTE entry{type, room.data(), room.size()};
    if (hsm.C_GetAttributeValue(session, object, &entry, 1) == CKR_OK) return {room.data(), entry.ulValueLen};
    return {};
}

// FNV-1a, 64 bits: it has to tell objects apart, not to withstand anybody.
std::uint64_t mixed(std::uint64_t sum, std::string_view bytes) {
    for (const char byte : bytes)
        sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
    return sum;
}

std::vector<std::string> read_lines(const fs::path& folder) {
    std::vector<std::string> lines;
    std::ifstream file(folder / ORDER_FILE);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

void write_lines(const fs::path& folder, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append("\n");
    replace_file(folder / ORDER_FILE, text);
}

} // namespace

std::string fingerprint(const CK_FUNCTION_LIST& hsm, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    std::string text = hexadecimal(attribute(hsm, session, object, CKA_CLASS));
    if (text.empty()) return text;
    for (const CK_ATTRIBUTE_TYPE type : {CKA_ID, CKA_LABEL})
        text += " " + hexadecimal(attribute(hsm, session, object, type));
    std::uint64_t sum = 0xcbf29ce484222325U;
    for (const CK_ATTRIBUTE_TYPE type : {CKA_KEY_TYPE, CKA_APPLICATION, CKA_MODULUS, CKA_EC_POINT, CKA_VALUE})
        sum = mixed(sum, attribute(hsm, session, object, type));
    return text + " " + std::to_string(sum);
}

ObjectOrder::ObjectOrder(const fs::path& folder) : lines_(read_lines(folder)) {}

std::size_t ObjectOrder::rank(std::string_view fingerprint) const {
    const auto place = std::find(lines_.begin(), lines_.end(), fingerprint);
    return place == lines_.end() ? 0 : static_cast<std::size_t>(place - lines_.begin()) + 1;
}

bool ObjectOrder::before(std::string_view first, std::string_view second) const {
    const auto a = rank(first);
    const auto b = rank(second);
    return a != b ? a < b : first < second;
}

void add_object(const fs::path& folder, std::string_view fingerprint) {
    const CardLock lock(folder);
    auto lines = read_lines(folder);
    lines.emplace_back(fingerprint);
    write_lines(folder, lines);
}

void change_object(const fs::path& folder, std::string_view before, std::string_view after) {
    if (before == after) return;
    const CardLock lock(folder);
    auto lines = read_lines(folder);
    const auto place = std::find(lines.begin(), lines.end(), before);
    if (place == lines.end()) return;
    if (after.empty())
        lines.erase(place);
    else
        *place = after;
    write_lines(folder, lines);
}

void forget_objects(const fs::path& folder) {
    const CardLock lock(folder);
    write_lines(folder, {});
}

} // namespace simcard
