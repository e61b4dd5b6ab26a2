#pragma once

#include "host/sentence.h"

#include <QString>
#include <string>
#include <vector>

namespace desktop {

// What is told, in the language that is spoken.
[[nodiscard]] QString text(const zvhost::Sentence& sentence);
[[nodiscard]] QString text(const std::vector<zvhost::Sentence>& sentences);
[[nodiscard]] QString text(const char* id, const zvhost::Values& values = {});

// Files and texts of cards are UTF-8.
[[nodiscard]] QString from_utf8(const std::string& bytes);
[[nodiscard]] std::string to_utf8(const QString& text);

} // namespace desktop
