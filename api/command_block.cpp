#include "api/command_block.h"

#include "api/lines.h"
#include "api/state.h"
#include "card/detection.h"
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

// A field of one character has no terminator.
void set_field(REQRENIN& record, const BlockKey& key, std::string_view value) {
    char* field = reinterpret_cast<char*>(&record) + key.offset;
    if (key.width == 1)
        *field = value.empty() ? '\0' : value.front();
    else
        copy_text(field, key.width, value);
}

} // namespace

std::string_view field_text(const REQRENIN& record, const BlockKey& key) {
    return bounded_text(reinterpret_cast<const char*>(&record) + key.offset, key.width);
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

namespace {

// Adds to the library's request buffer; remembers when something did not fit.
class BlockWriter {
  public:
    BlockWriter() { szBufferRichiesta[0] = '\0'; }
    BlockWriter& add(std::string_view text) {
        fits_ = append_text(szBufferRichiesta, text) && fits_;
        return *this;
    }
    [[nodiscard]] bool fits() const { return fits_; }

    [[nodiscard]] std::size_t length() const { return std::strlen(szBufferRichiesta); }

  private:
    bool fits_ = true;
};

} // namespace

WrittenBlock write_block(const BlockValues& values) {
    BlockWriter writer;
    WrittenBlock block;
    writer.add("BEGIN_STRING\nslot:").add(with_decimal("", slot).text);
    writer.add("\ncertificatelabel:").add(values.cert_label);
    writer.add("\nszdll:").add(Libreria).add("\nszpin:");
    block.pin_start = writer.length();
    writer.add(values.pin);
    block.pin_length = writer.length() - block.pin_start;
    writer.add("\nsztipocert:").add(values.kind).add("\nckeepkeys:").add(values.keep_flag);
    writer.add("\npendinglabel:").add(values.pending_label).add("\nszcertchain:").add(values.certificate);
    for (const auto& [key, place] : forms::BLOCK)
        writer.add("\n").add(key).add(name_text(dNameRen, place));
    block.length = writer.length();
    writer.add("\nEND_STRING\n");
    if (writer.fits()) return block;
    clear(szBufferRichiesta);
    return {};
}

void wipe_pin(const WrittenBlock& block) {
    char* pin = szBufferRichiesta + block.pin_start;
    std::fill_n(pin, std::min(block.pin_length, std::strlen(pin)), '*');
}

} // namespace zv
