#pragma once

#include "records.h"

#include <span>
#include <string_view>

namespace zv {

// The name that a host's text would give if the text that it is worked on in had no end.
[[nodiscard]] datiDN whole_name(std::string_view dn);

// Puts a text with every `from` replaced into newstring; what does not fit stays out.
void replace_text(std::string_view text, std::string_view from, std::string_view to);

// The name of the request, dNameRen: emptied; filled from lines of one attribute each; taken from a host's
// text, which is brought to such lines in its place.
void clear_subject();
void load_subject(std::string_view lines);
void take_subject(std::span<char> dn);

} // namespace zv
