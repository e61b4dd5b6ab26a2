#pragma once

#include "records.h"
#include "util/name_forms.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <string_view>

// The text block that carries one command: its keys, and the record that they fill.
namespace zv {

// A key and the field that takes its value.
struct BlockKey {
    const char* key;
    std::size_t offset;
    std::size_t width;
};

// Places of the keys in the block; the distinguished name's follow.
enum BlockIndex : std::size_t {
    key_slot,
    key_certificate_label,
    key_module,
    key_pin,
    key_kind,
    key_keep_flag,
    key_pending_label,
    key_certificate,
    first_name_key
};

constexpr std::size_t BLOCK_KEYS = first_name_key + std::size(forms::BLOCK);

// Written in this order, and looked for in this order in every line.
extern const std::array<BlockKey, BLOCK_KEYS> BLOCK;

// What a block is written from, beside slot, module and name.
struct BlockValues {
    const char* cert_label;
    const char* pin;
    const char* certificate;
    const char* pending_label;
    const char* kind;
    const char* keep_flag;
};

// Parses a block into a zeroed record. Returns which keys were found.
std::bitset<BLOCK_KEYS> parse_block(std::string_view block, REQRENIN& record);

// Copies what was found to where the lower layers read it.
void publish(const REQRENIN& record, const std::bitset<BLOCK_KEYS>& found);

// The text of a field.
[[nodiscard]] std::string_view field_text(const REQRENIN& record, const BlockKey& key);

// What was written into the request buffer: its length without the last line, and where the PIN stands. All
// zero, and the buffer empty, when it did not fit.
struct WrittenBlock {
    std::size_t length = 0, pin_start = 0, pin_length = 0;
};

WrittenBlock write_block(const BlockValues& values);

// Overwrites the PIN in the request buffer.
void wipe_pin(const WrittenBlock& block);

} // namespace zv
