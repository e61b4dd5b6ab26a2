// renewDump: every object of the card as a line of text, in a session of its own.
#include <algorithm>
#include <memory>
#include <string_view>

#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr CK_ULONG ID_SIZE = 30, LABEL_SIZE = 64, VALUE_SIZE = 8192;
constexpr CK_ULONG MODULUS_SIZE = 1024, MODULUS_SIZE_TOUCHSIGN = 2048;
constexpr std::size_t MOST_MODULUS_SHOWN = 256;

class Dump {
  public:
    Dump()
        : modulusSize_(kvIsTOUCHSIGN() != 0 ? MODULUS_SIZE_TOUCHSIGN : MODULUS_SIZE),
          modulus_(modulusSize_, '\0') {}

    void write(std::string& out);

  private:
    void addLine(CK_OBJECT_HANDLE object, std::string& out);
    void describe(CK_OBJECT_HANDLE object, CK_OBJECT_CLASS objectClass);
    void describeKey(CK_OBJECT_HANDLE object, CK_ULONG entries);
    void describeCertificate(CK_OBJECT_HANDLE object);
    CK_RV read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries);
    void takeTexts();

    char id_[ID_SIZE] = {};
    char label_[LABEL_SIZE] = {};
    unsigned char value_[VALUE_SIZE] = {};
    CK_ULONG modulusSize_;
    std::string modulus_;
    // Set once: each certificate leaves its own lengths, and a longer one after it reads as too long.
    CK_ATTRIBUTE certificate_[3] = {
        {CKA_ID, id_, ID_SIZE}, {CKA_LABEL, label_, LABEL_SIZE}, {CKA_VALUE, value_, VALUE_SIZE}};

    // The line in the making.
    std::string name_, idText_, labelText_, modulusText_, serial_;
};

CK_RV Dump::read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE* tmpl, CK_ULONG entries) {
    return zv::rv = zv::call<&zv::Functions::C_GetAttributeValue>(zv::hSession, object, tmpl, entries);
}

void Dump::takeTexts() {
    idText_ = zv::boundedText(id_, sizeof id_);
    labelText_ = zv::boundedText(label_, sizeof label_);
}

void Dump::describeKey(CK_OBJECT_HANDLE object, CK_ULONG entries) {
    CK_ATTRIBUTE tmpl[] = {{CKA_ID, id_, ID_SIZE},
                           {CKA_LABEL, label_, LABEL_SIZE},
                           {CKA_MODULUS, modulus_.data(), modulusSize_}};
    const CK_RV result = read(object, tmpl, entries);
    takeTexts();
    if (result != CKR_OK || entries < 3 || tmpl[2].ulValueLen > modulusSize_) return;
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    const std::size_t shown = std::min<std::size_t>(tmpl[2].ulValueLen, MOST_MODULUS_SHOWN);
    for (const char c : std::string_view(modulus_).substr(0, shown)) {
        const auto byte = static_cast<unsigned char>(c);
        modulusText_ += DIGITS[byte >> 4];
        modulusText_ += DIGITS[byte & 0x0F];
    }
}

void Dump::describeCertificate(CK_OBJECT_HANDLE object) {
    const CK_RV result = read(object, certificate_, 3);
    const CK_ULONG sizes[] = {ID_SIZE, LABEL_SIZE, VALUE_SIZE};
    for (int i = 0; i < 3; ++i)
        certificate_[i].ulValueLen = std::min(certificate_[i].ulValueLen, sizes[i]);
    if (result != CKR_OK) return;
    takeTexts();
    char serial[128] = {};
    kvX509GetSerial(value_, certificate_[2].ulValueLen, serial, sizeof serial);
    serial_ = zv::boundedText(serial, sizeof serial);
}

void Dump::describe(CK_OBJECT_HANDLE object, CK_OBJECT_CLASS objectClass) {
    static constexpr const char* NAMES[] = {"CKO_DATA", "CKO_CERTIFICATE", "CKO_PUBLIC_KEY",
                                            "CKO_PRIVATE_KEY"};
    zv::clear(id_, label_);
    std::fill(std::begin(value_), std::end(value_), static_cast<unsigned char>(0));
    std::fill(modulus_.begin(), modulus_.end(), '\0');
    for (std::string* text : {&idText_, &labelText_, &modulusText_, &serial_})
        text->clear();
    name_ = NAMES[objectClass];
    if (objectClass == CKO_CERTIFICATE)
        describeCertificate(object);
    else
        describeKey(object, objectClass == CKO_DATA ? 2 : 3);
}

void Dump::write(std::string& out) {
    CK_TOKEN_INFO token{};
    zv::rv = zv::call<&zv::Functions::C_GetTokenInfo>(zv::slotID, &token);
    if (zv::rv != CKR_OK) return;
    const char* serial = reinterpret_cast<const char*>(token.serialNumber);
    out.assign("Dump Smart Card ").append(zv::boundedText(serial, sizeof token.serialNumber)).append("\n\n");
    int objects = 0;
    // The search is never ended: the session is, right after.
    const auto describeNext = [this, &out, &objects](CK_OBJECT_HANDLE object) {
        ++objects;
        addLine(object, out);
    };
    const zv::Walked walked =
        zv::walk({.session = zv::hSession, .exits = zv::ALWAYS_LEFT_OPEN}, describeNext);
    if (walked.whole()) out.append("\nTrovati ").append(ItoA(objects)).append(" oggetti\n\n");
}

void Dump::addLine(CK_OBJECT_HANDLE object, std::string& out) {
    CK_OBJECT_CLASS objectClass = 0;
    if (zv::readNumber(zv::hSession, object, CKA_CLASS, objectClass) != CKR_OK ||
        objectClass > CKO_PRIVATE_KEY)
        return;
    describe(object, objectClass);
    out.append(name_).append(",").append(idText_).append(",").append(labelText_).append(",");
    out.append(modulusText_).append(",").append(serial_).append("\n");
}

} // namespace

int renewDump(char* libPath, char* pin, int slot, std::string& out) {
    int result = 0;
    // A dump that stops early is what it is: the reading goes on.
    zv::guarded([&] {
        const auto dump = std::make_unique<Dump>();
        result = static_cast<int>(__Initialize(slot, pin, libPath));
        if (result == 0) dump->write(out);
    });
    finalizza();
    return result;
}
