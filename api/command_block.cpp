#include "api/command_block.h"

#include "api/lines.h"
#include "api/state.h"
#include "card/detection.h"
#include "routines/api.h"
#include "store/renewal_state.h"
#include "util/numbers.h"
#include "util/text.h"

#include <algorithm>
#include <cstring>

namespace zv {

namespace {

constexpr std::string_view BEGIN = "BEGIN_STRING";
constexpr std::string_view LAST_LINE = "END_STRING";

#define ZV_KEY(key, field)                                                                                   \
    BlockKey {                                                                                               \
        key, offsetof(REQRENIN, field), sizeof REQRENIN::field                                               \
    }

constexpr auto block_keys() {
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
    std::transform(std::begin(forms::BLOCK), std::end(forms::BLOCK), keys.begin() + first_name_key,
                   [](const NameSpelling& spelling) {
                       const auto& [key, place] = spelling;
                       return BlockKey{key, offsetof(REQRENIN, dn) + place.offset(), place.width()};
                   });
    return keys;
}

#undef ZV_KEY

} // namespace

constexpr std::array<BlockKey, BLOCK_KEYS> BLOCK = block_keys();

namespace {

char* field_of(REQRENIN& record, const BlockKey& key) {
    return reinterpret_cast<char*>(&record) + key.offset;
}

// A field of one character has no terminator.
void set_field(REQRENIN& record, const BlockKey& key, std::string_view value) {
    char* field = field_of(record, key);
    if (key.width == 1)
        *field = value.empty() ? '\0' : value.front();
    else
        copy_text(field, key.width, value);
}

} // namespace

std::string_view field_text(const REQRENIN& record, const BlockKey& key) {
    return bounded_text(field_of(const_cast<REQRENIN&>(record), key), key.width);
}

std::bitset<BLOCK_KEYS> parse_block(std::string_view block, REQRENIN& record) {
    std::bitset<BLOCK_KEYS> found;
    if (!block.starts_with(BEGIN)) return found;
    block.remove_prefix(BEGIN.size());
    std::string_view line, value;
    while (next_line(block, line) && line.find(LAST_LINE) == std::string_view::npos) {
        for (std::size_t i = 0; i < BLOCK_KEYS; ++i) {
            if (!value_behind(line, BLOCK[i].key, value)) continue;
            set_field(record, BLOCK[i], value);
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
            copy_text(certificateLabel, record.certificateLabel);
        if (offset == offsetof(REQRENIN, pendingLabel)) copy_text(pendingLabel, record.pendingLabel);
        if (offset == offsetof(REQRENIN, cKeepKeys)) cKeepKeys = record.cKeepKeys;
        if (i < first_name_key) continue;
        const NamePlace& place = forms::BLOCK[i - first_name_key].place;
        set_name_text(dName, place, name_text(record.dn, place));
    }
}

} // namespace zv

namespace {

// Adds to the library's request buffer; remembers when something did not fit.
class BlockWriter {
  public:
    BlockWriter() { zv::szBufferRichiesta[0] = '\0'; }
    BlockWriter& add(std::string_view text) {
        fits_ = zv::append_text(zv::szBufferRichiesta, text) && fits_;
        return *this;
    }
    [[nodiscard]] bool fits() const { return fits_; }

    [[nodiscard]] std::size_t length() const { return std::strlen(zv::szBufferRichiesta); }

  private:
    bool fits_ = true;
};

// Where the PIN stands in the request buffer.
std::size_t pin_start = 0, pin_length = 0;

} // namespace

unsigned long RichiestaMinInfo(char* cert_label, const char* pin, const char* cert_chain, char* pending_label,
                               const char* cert_kind, const char* keep_flag) {
    BlockWriter writer;
    writer.add("BEGIN_STRING\nslot:")
        .add(zv::with_decimal("", zv::slot).text)
        .add("\ncertificatelabel:")
        .add(zv::or_empty(cert_label));
    writer.add("\nszdll:").add(zv::Libreria).add("\nszpin:");
    pin_start = writer.length();
    writer.add(zv::or_empty(pin));
    pin_length = writer.length() - pin_start;
    writer.add("\nsztipocert:").add(zv::or_empty(cert_kind)).add("\nckeepkeys:").add(zv::or_empty(keep_flag));
    writer.add("\npendinglabel:")
        .add(zv::or_empty(pending_label))
        .add("\nszcertchain:")
        .add(zv::or_empty(cert_chain));
    for (const auto& [key, place] : zv::forms::BLOCK)
        writer.add("\n").add(key).add(zv::name_text(zv::dNameRen, place));
    const unsigned long length = writer.length();
    writer.add("\nEND_STRING\n");
    if (writer.fits()) return length;
    zv::clear(zv::szBufferRichiesta);
    return 0;
}

void zv::wipe_pin() {
    std::fill_n(szBufferRichiesta + pin_start,
                std::min(pin_length, std::strlen(szBufferRichiesta + pin_start)), '*');
    pin_length = 0;
}
