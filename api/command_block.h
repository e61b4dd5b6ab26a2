#ifndef ZV_API_COMMAND_BLOCK_H
#define ZV_API_COMMAND_BLOCK_H

#include <array>
#include <bitset>
#include <cstddef>
#include <string_view>

#include "records.h"
#include "util/name_forms.h"

/** The text block that carries one command: its keys, and the record that they fill. */
namespace zv {

/** A key and the field that takes its value. */
struct BlockKey {
    const char* key;
    std::size_t offset;
    std::size_t width;
};

/** Places of the keys in the block; the distinguished name's follow. */
enum BlockIndex : std::size_t {
    KEY_SLOT,
    KEY_CERTIFICATE_LABEL,
    KEY_MODULE,
    KEY_PIN,
    KEY_KIND,
    KEY_KEEP_FLAG,
    KEY_PENDING_LABEL,
    KEY_CERTIFICATE,
    FIRST_NAME_KEY
};

constexpr std::size_t BLOCK_KEYS = FIRST_NAME_KEY + std::size(forms::BLOCK);

/** Written in this order, and looked for in this order in every line. */
extern const std::array<BlockKey, BLOCK_KEYS> BLOCK;

/** What a block is written from, beside slot, module and name. */
struct BlockValues {
    const char* certLabel;
    const char* pin;
    const char* certificate;
    const char* pendingLabel;
    const char* kind;
    const char* keepFlag;
};

/** Parses a block into a zeroed record. Returns which keys were found. */
std::bitset<BLOCK_KEYS> parseBlock(std::string_view block, REQRENIN& record);

/** Copies what was found to where the lower layers read it. */
void publish(const REQRENIN& record, const std::bitset<BLOCK_KEYS>& found);

/** The text of a field. */
[[nodiscard]] std::string_view fieldText(const REQRENIN& record, const BlockKey& key);

/** Overwrites the PIN in the request buffer, where the writer put it last. */
void wipePin();

} // namespace zv

#endif
