#include "api/command_block.h"

#include <algorithm>
#include <cstring>

#include "api/lines.h"
#include "api/state.h"
#include "card/detection.h"
#include "routines.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace zv {

namespace {

constexpr std::string_view BEGIN = "BEGIN_STRING";
constexpr std::string_view LAST_LINE = "END_STRING";

#define ZV_KEY(key, field)                                                                                   \
    BlockKey {                                                                                               \
        key, offsetof(REQRENIN, field), sizeof REQRENIN::field                                               \
    }

constexpr auto blockKeys() {
    std::array<BlockKey, BLOCK_KEYS> keys = {
        ZV_KEY("slot:", slot),
        ZV_KEY("certificatelabel:", certificateLabel),
        ZV_KEY("szdll:", szDll),
        ZV_KEY("szpin:", szPin),
        ZV_KEY("sztipocert:", szTipoCert),
        ZV_KEY("ckeepkeys:", cKeepKeys),
        ZV_KEY("pendinglabel:", pendingLabel),
        ZV_KEY("szcertchain:", szCertChain),
    };
    std::transform(std::begin(forms::BLOCK), std::end(forms::BLOCK), keys.begin() + FIRST_NAME_KEY,
                   [](const NameSpelling& spelling) {
                       const auto& [key, place] = spelling;
                       return BlockKey{key, offsetof(REQRENIN, dn) + place.offset(), place.width()};
                   });
    return keys;
}

#undef ZV_KEY

} // namespace

constexpr std::array<BlockKey, BLOCK_KEYS> BLOCK = blockKeys();

namespace {

char* fieldOf(REQRENIN& record, const BlockKey& key) {
    return reinterpret_cast<char*>(&record) + key.offset;
}

// A field of one character has no terminator.
void setField(REQRENIN& record, const BlockKey& key, std::string_view value) {
    char* field = fieldOf(record, key);
    if (key.width == 1)
        *field = value.empty() ? '\0' : value.front();
    else
        copyText(field, key.width, value);
}

} // namespace

std::string_view fieldText(const REQRENIN& record, const BlockKey& key) {
    return boundedText(fieldOf(const_cast<REQRENIN&>(record), key), key.width);
}

std::bitset<BLOCK_KEYS> parseBlock(std::string_view block, REQRENIN& record) {
    std::bitset<BLOCK_KEYS> found;
    if (!block.starts_with(BEGIN)) return found;
    block.remove_prefix(BEGIN.size());
    std::string_view line, value;
    while (nextLine(block, line) && line.find(LAST_LINE) == std::string_view::npos) {
        for (std::size_t i = 0; i < BLOCK_KEYS; ++i) {
            if (!valueBehind(line, BLOCK[i].key, value)) continue;
            setField(record, BLOCK[i], value);
            found.set(i);
            break;
        }
    }
    return found;
}

void publish(const REQRENIN& record, const std::bitset<BLOCK_KEYS>& found) {
    for (std::size_t i = 0; i < BLOCK_KEYS; ++i) {
        if (!found[i]) continue;
        const std::size_t offset = BLOCK[i].offset;
        if (offset == offsetof(REQRENIN, certificateLabel))
            copyText(certificateLabel, record.certificateLabel);
        if (offset == offsetof(REQRENIN, pendingLabel)) copyText(pendingLabel, record.pendingLabel);
        if (offset == offsetof(REQRENIN, cKeepKeys)) cKeepKeys = record.cKeepKeys;
        if (i < FIRST_NAME_KEY) continue;
        const NamePlace& place = forms::BLOCK[i - FIRST_NAME_KEY].place;
        setNameText(dName, place, nameText(record.dn, place));
    }
}

} // namespace zv

namespace {

// Adds to the library's request buffer; remembers when something did not fit.
class BlockWriter {
  public:
    BlockWriter() { zv::szBufferRichiesta[0] = '\0'; }
    BlockWriter& add(std::string_view text) {
        fits_ = zv::appendText(zv::szBufferRichiesta, text) && fits_;
        return *this;
    }
    [[nodiscard]] bool fits() const { return fits_; }

    [[nodiscard]] std::size_t length() const { return std::strlen(zv::szBufferRichiesta); }

  private:
    bool fits_ = true;
};

// Where the PIN stands in the request buffer.
std::size_t pinStart = 0, pinLength = 0;

} // namespace

unsigned long RichiestaMinInfo(char* certLabel, const char* pin, const char* certChain, char* pendingLabel,
                               const char* certKind, const char* keepFlag) {
    BlockWriter writer;
    writer.add("BEGIN_STRING\nslot:")
        .add(ItoA(zv::slot))
        .add("\ncertificatelabel:")
        .add(zv::orEmpty(certLabel));
    writer.add("\nszdll:").add(zv::Libreria).add("\nszpin:");
    pinStart = writer.length();
    writer.add(zv::orEmpty(pin));
    pinLength = writer.length() - pinStart;
    writer.add("\nsztipocert:").add(zv::orEmpty(certKind)).add("\nckeepkeys:").add(zv::orEmpty(keepFlag));
    writer.add("\npendinglabel:")
        .add(zv::orEmpty(pendingLabel))
        .add("\nszcertchain:")
        .add(zv::orEmpty(certChain));
    for (const auto& [key, place] : zv::forms::BLOCK)
        writer.add("\n").add(key).add(zv::nameText(zv::dNameRen, place));
    const unsigned long length = writer.length();
    writer.add("\nEND_STRING\n");
    if (writer.fits()) return length;
    zv::clear(zv::szBufferRichiesta);
    return 0;
}

void zv::wipePin() {
    std::fill_n(szBufferRichiesta + pinStart, std::min(pinLength, std::strlen(szBufferRichiesta + pinStart)),
                '*');
    pinLength = 0;
}
