#pragma once

#include <QString>
#include <string>

namespace desktop {

// Where a renewal's files go: the working folder, which the engine looks into, too. It is the user's documents.
// @return what is wrong with it; empty when it can be used
[[nodiscard]] QString use_folder(const QString& wanted);

// File of a request that is yet to be made.
[[nodiscard]] std::string new_request_file(const std::string& card_serial, const char* kind);

// A certificate that came in no file, in one.
// @return its name; empty where none can be made
[[nodiscard]] QString file_with(const QByteArray& certificate);

} // namespace desktop
