#pragma once

#include <cstddef>
#include <span>

// Distinguished names written with short names, rewritten to numeric OIDs in place.
namespace zv {

constexpr std::size_t NAME_TEXT_SIZE = 8216;

// Turns every second ", D=" and a ", N=" behind a ", D=" into "/D=" and "/N="; returns the rounds made.
int slash_commas(char* dn);

// slash_commas, then the OIDs. work is of the text's size.
int write_oids(char* dn, char* work);

// All names but null ones; returns the rounds of the last.
int write_oids(std::span<char* const> names);

} // namespace zv
