#include "inventory/dump.h"

#include "card/light_opener.h"
#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"
#include "util/guarded.h"
#include "util/text.h"
#include "zvCrypt.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

namespace zv {

namespace {

constexpr CK_ULONG DUMP_ID_SIZE = 30, DUMP_LABEL_SIZE = 64, DUMP_VALUE_SIZE = 8192;
constexpr CK_ULONG DUMP_MODULUS_SIZE = 1024, DUMP_MODULUS_SIZE_TOUCHSIGN = 2048;
constexpr std::size_t MOST_MODULUS_SHOWN = 256;

struct DumpLine {
    std::string id, label, modulus, serial;
};

class Dump {
  public:
    Dump() : modulus_(kvIsTOUCHSIGN() != 0 ? DUMP_MODULUS_SIZE_TOUCHSIGN : DUMP_MODULUS_SIZE, '\0') {}

    void write(std::string& out);

  private:
    void add_line(CK_OBJECT_HANDLE object, std::string& out);
    DumpLine describe_key(CK_OBJECT_HANDLE object, CK_ULONG entries);
    DumpLine describe_certificate(CK_OBJECT_HANDLE object);
    CK_RV read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries);
    [[nodiscard]] DumpLine texts() const;

    char id_[DUMP_ID_SIZE] = {};
    char label_[DUMP_LABEL_SIZE] = {};
    unsigned char value_[DUMP_VALUE_SIZE] = {};
    std::string modulus_;
    // Set once: each certificate leaves its own lengths, and a longer one after it reads as too long.
    CK_ATTRIBUTE certificate_[3] = {
        {CKA_ID, id_, sizeof id_}, {CKA_LABEL, label_, sizeof label_}, {CKA_VALUE, value_, sizeof value_}};
};

std::string modulus_text(std::string_view modulus) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : modulus.substr(0, MOST_MODULUS_SHOWN)) {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

CK_RV Dump::read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries) {
    clear(id_, label_);
    std::memset(value_, 0, sizeof value_);
    std::fill(modulus_.begin(), modulus_.end(), '\0');
    return rv = call<&Functions::C_GetAttributeValue>(hSession, object, tmpl, entries);
}

DumpLine Dump::texts() const {
    return {
        std::string(bounded_text(id_, sizeof id_)), std::string(bounded_text(label_, sizeof label_)), {}, {}};
}

DumpLine Dump::describe_key(CK_OBJECT_HANDLE object, CK_ULONG entries) {
    CK_ATTRIBUTE tmpl[] = {{CKA_ID, id_, sizeof id_},
                           {CKA_LABEL, label_, sizeof label_},
                           {CKA_MODULUS, modulus_.data(), modulus_.size()}};
    const CK_RV result = read(object, tmpl, entries);
    DumpLine line = texts();
    if (result == CKR_OK && entries == std::size(tmpl) && tmpl[2].ulValueLen <= modulus_.size())
        line.modulus = modulus_text(std::string_view(modulus_).substr(0, tmpl[2].ulValueLen));
    return line;
}

DumpLine Dump::describe_certificate(CK_OBJECT_HANDLE object) {
    const CK_RV result = read(object, certificate_, std::size(certificate_));
    const CK_ULONG sizes[] = {sizeof id_, sizeof label_, sizeof value_};
    for (std::size_t i = 0; i < std::size(sizes); ++i)
        certificate_[i].ulValueLen = std::min(certificate_[i].ulValueLen, sizes[i]);
    if (result != CKR_OK) return {};
    DumpLine line = texts();
    char serial[128] = {};
    kvX509GetSerial(value_, certificate_[2].ulValueLen, serial, sizeof serial);
    line.serial = bounded_text(serial, sizeof serial);
    return line;
}

void Dump::write(std::string& out) {
    CK_TOKEN_INFO token{};
    rv = call<&Functions::C_GetTokenInfo>(slotID, &token);
    if (rv != CKR_OK) return;
    const char* serial = reinterpret_cast<const char*>(token.serialNumber);
    out.assign("Dump Smart Card ").append(bounded_text(serial, sizeof token.serialNumber)).append("\n\n");
    int objects = 0;
    // The search is never ended: the session is, right after.
    const auto describe_next = [this, &out, &objects](CK_OBJECT_HANDLE object) {
        ++objects;
        add_line(object, out);
    };
    if (walk({.session = hSession, .exits = ALWAYS_LEFT_OPEN}, describe_next).whole())
        out.append("\nTrovati ").append(std::to_string(objects)).append(" oggetti\n\n");
}

void Dump::add_line(CK_OBJECT_HANDLE object, std::string& out) {
    static constexpr const char* names[] = {"CKO_DATA", "CKO_CERTIFICATE", "CKO_PUBLIC_KEY",
                                            "CKO_PRIVATE_KEY"};
    CK_OBJECT_CLASS object_class = 0;
    if (read_number(hSession, object, CKA_CLASS, object_class) != CKR_OK || object_class > CKO_PRIVATE_KEY)
        return;
    const DumpLine line = object_class == CKO_CERTIFICATE
                              ? describe_certificate(object)
                              : describe_key(object, object_class == CKO_DATA ? 2 : 3);
    out.append(names[object_class]);
    for (const std::string* text : {&line.id, &line.label, &line.modulus, &line.serial})
        out.append(",").append(*text);
    out.append("\n");
}

} // namespace

int dump_card(const char* lib_path, const char* pin, int slot_index, std::string& out) {
    int result = 0;
    // A dump that stops early is what it is: the reading goes on.
    guarded([&] {
        const auto dump = std::make_unique<Dump>();
        result = static_cast<int>(open_slot(slot_index, pin, lib_path));
        if (result == 0) dump->write(out);
    });
    close_card();
    return result;
}

} // namespace zv
