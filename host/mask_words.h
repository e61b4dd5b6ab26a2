#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zvhost {

// A name and each of its words, but for those that are too short to be told from others.
void add_name(std::vector<std::string>& names, const std::string& name);

enum class Where { anywhere, whole_word };

// A text with another in the place of each occurrence, in upper or lower case. Digits may stand beside a whole word:
// records of a name have nothing between its attributes.
[[nodiscard]] std::string replaced(std::string_view text, std::string_view what, std::string_view by,
                                   Where where);

// How a name may stand in a text: as it is, as in JSON, in Latin-1, in hexadecimal, within base64.
[[nodiscard]] std::vector<std::string> forms_of(const std::string& name);

} // namespace zvhost
