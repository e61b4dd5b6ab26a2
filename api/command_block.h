#ifndef ZV_API_COMMAND_BLOCK_H
#define ZV_API_COMMAND_BLOCK_H

#include <bitset>
#include <cstddef>
#include <string_view>

#include "records.h"

/** The text block that carries one command: its keys, and the record that they fill. */
namespace zv {

/** A key and the field that takes its value. */
struct BlockKey {
    const char* key;
    std::size_t offset;
    std::size_t width;
};

constexpr std::size_t BLOCK_KEYS = 26;
/** Index of the first key that is part of the distinguished name; the keys before it are written each in its
 * own way. */
constexpr std::size_t FIRST_NAME_KEY = 8;

extern const BlockKey BLOCK[BLOCK_KEYS];

/** Parses a block into a zeroed record. Returns which keys were found. */
std::bitset<BLOCK_KEYS> parseBlock(std::string_view block, REQRENIN& record);

/** Copies what was found to where the lower layers read it. */
void publish(const REQRENIN& record, const std::bitset<BLOCK_KEYS>& found);

/** The text of a field. */
std::string_view fieldText(const REQRENIN& record, const BlockKey& key);

} // namespace zv

#endif
