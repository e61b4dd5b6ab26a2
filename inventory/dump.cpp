#include "inventory/dump.h"

#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"
#include "util/guarded.h"
#include "util/text.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace {

constexpr CK_ULONG ID_SIZE = 30, LABEL_SIZE = 64, VALUE_SIZE = 8192;
constexpr CK_ULONG MODULUS_SIZE = 1024, MODULUS_SIZE_TOUCHSIGN = 2048;
constexpr std::size_t MOST_MODULUS_SHOWN = 256;

class Dump {
  public:
    Dump()
        : modulus_size_(kvIsTOUCHSIGN() != 0 ? MODULUS_SIZE_TOUCHSIGN : MODULUS_SIZE),
          modulus_(modulus_size_, '\0') {}

    void write(std::string& out);

  private:
    void add_line(CK_OBJECT_HANDLE object, std::string& out);
    void describe(CK_OBJECT_HANDLE object, CK_OBJECT_CLASS object_class);
    void describe_key(CK_OBJECT_HANDLE object, CK_ULONG entries);
    void describe_certificate(CK_OBJECT_HANDLE object);
    CK_RV read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries);
    void take_texts();

    char id_[ID_SIZE] = {};
    char label_[LABEL_SIZE] = {};
    unsigned char value_[VALUE_SIZE] = {};
    CK_ULONG modulus_size_;
    std::string modulus_;
    // Set once: each certificate leaves its own lengths, and a longer one after it reads as too long.
    CK_ATTRIBUTE certificate_[3] = {
        {CKA_ID, id_, ID_SIZE}, {CKA_LABEL, label_, LABEL_SIZE}, {CKA_VALUE, value_, VALUE_SIZE}};

    // The line in the making.
    std::string name_, id_text_, label_text_, modulus_text_, serial_;
};

CK_RV Dump::read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries) {
    return zv::rv = zv::call<&zv::Functions::C_GetAttributeValue>(zv::hSession, object, tmpl, entries);
}

void Dump::take_texts() {
    id_text_ = zv::bounded_text(id_, sizeof id_);
    label_text_ = zv::bounded_text(label_, sizeof label_);
}

void Dump::describe_key(CK_OBJECT_HANDLE object, CK_ULONG entries) {
    CK_ATTRIBUTE tmpl[] = {{CKA_ID, id_, ID_SIZE},
                           {CKA_LABEL, label_, LABEL_SIZE},
                           {CKA_MODULUS, modulus_.data(), modulus_size_}};
    const CK_RV result = read(object, tmpl, entries);
    take_texts();
    if (result != CKR_OK || entries < 3 || tmpl[2].ulValueLen > modulus_size_) return;
    static constexpr char digits[] = "0123456789ABCDEF";
    const std::size_t shown = std::min<std::size_t>(tmpl[2].ulValueLen, MOST_MODULUS_SHOWN);
    for (const char c : std::string_view(modulus_).substr(0, shown)) {
        const auto byte = static_cast<unsigned char>(c);
        modulus_text_ += digits[byte >> 4];
        modulus_text_ += digits[byte & 0x0F];
    }
}

void Dump::describe_certificate(CK_OBJECT_HANDLE object) {
    const CK_RV result = read(object, certificate_, 3);
    const CK_ULONG sizes[] = {ID_SIZE, LABEL_SIZE, VALUE_SIZE};
    for (int i = 0; i < 3; ++i)
        certificate_[i].ulValueLen = std::min(certificate_[i].ulValueLen, sizes[i]);
    if (result != CKR_OK) return;
    take_texts();
    char serial[128] = {};
    kvX509GetSerial(value_, certificate_[2].ulValueLen, serial, sizeof serial);
    serial_ = zv::bounded_text(serial, sizeof serial);
}

void Dump::describe(CK_OBJECT_HANDLE object, CK_OBJECT_CLASS object_class) {
    static constexpr const char* names[] = {"CKO_DATA", "CKO_CERTIFICATE", "CKO_PUBLIC_KEY",
                                            "CKO_PRIVATE_KEY"};
    zv::clear(id_, label_);
    std::fill(std::begin(value_), std::end(value_), static_cast<unsigned char>(0));
    std::fill(modulus_.begin(), modulus_.end(), '\0');
    for (std::string* text : {&id_text_, &label_text_, &modulus_text_, &serial_})
        text->clear();
    name_ = names[object_class];
    if (object_class == CKO_CERTIFICATE)
        describe_certificate(object);
    else
        describe_key(object, object_class == CKO_DATA ? 2 : 3);
}

void Dump::write(std::string& out) {
    CK_TOKEN_INFO token{};
    zv::rv = zv::call<&zv::Functions::C_GetTokenInfo>(zv::slotID, &token);
    if (zv::rv != CKR_OK) return;
    const char* serial = reinterpret_cast<const char*>(token.serialNumber);
    out.assign("Dump Smart Card ").append(zv::bounded_text(serial, sizeof token.serialNumber)).append("\n\n");
    int objects = 0;
    // The search is never ended: the session is, right after.
    const auto describe_next = [this, &out, &objects](CK_OBJECT_HANDLE object) {
        ++objects;
        add_line(object, out);
    };
    const zv::Walked walked =
        zv::walk({.session = zv::hSession, .exits = zv::ALWAYS_LEFT_OPEN}, describe_next);
    if (walked.whole()) out.append("\nTrovati ").append(ItoA(objects)).append(" oggetti\n\n");
}

void Dump::add_line(CK_OBJECT_HANDLE object, std::string& out) {
    CK_OBJECT_CLASS object_class = 0;
    if (zv::read_number(zv::hSession, object, CKA_CLASS, object_class) != CKR_OK ||
        object_class > CKO_PRIVATE_KEY)
        return;
    describe(object, object_class);
    out.append(name_).append(",").append(id_text_).append(",").append(label_text_).append(",");
    out.append(modulus_text_).append(",").append(serial_).append("\n");
}

} // namespace

namespace zv {

int dump_card(char* lib_path, char* pin, int slot, std::string& out) {
    int result = 0;
    // A dump that stops early is what it is: the reading goes on.
    guarded([&] {
        const auto dump = std::make_unique<Dump>();
        result = static_cast<int>(__Initialize(slot, pin, lib_path));
        if (result == 0) dump->write(out);
    });
    finalizza();
    return result;
}

} // namespace zv
