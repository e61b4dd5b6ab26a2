#pragma once

#include "host/doctor.h"

#include <string>
#include <string_view>
#include <vector>

namespace zvhost {

// What a help desk wants to see beside what the doctor found, as it stands on this computer. Nothing is masked yet.
struct HelpDeskText {
    std::string name; // "system", "environment", "card-table" or "log"
    std::string text;
};

// Reads them: the system's name, the variables of the environment that matter here, the configuration of the card table
// and the library's log, as a whole. What cannot be read is an empty text.
[[nodiscard]] std::vector<HelpDeskText> help_desk_texts();

// Takes out of a text what belongs to a person. What was taken out says what it was: "[name]", "[tax code]". A text is
// UTF-8, of any length; nothing is kept of it.
class Mask {
  public:
    // @param examination  whose cards say which names to look for
    // @param with_names   leaves names, tax codes and the user's folder; a PIN goes in any case
    Mask(const Examination& examination, bool with_names);

    // @return the text without PINs and, unless they are wanted, names, tax codes, mail addresses and the user's folder
    [[nodiscard]] std::string operator()(std::string text) const;
    // The same for a log, where certificates and requests stand in base64 (RFC 4648) and hexadecimal: they go, too.
    [[nodiscard]] std::string of_log(std::string text) const;

  private:
    bool with_names_;
    std::vector<std::string> names_; // longest first
    std::vector<std::string> homes_;
    std::vector<std::string> users_;
};

// Makes the file, which must not be there yet; its owner alone may read it.
// @throws Error with Exit::refused where its name is taken or its folder takes none, Exit::failed where writing fails;
//         nothing of the file is left then
void save_for_help_desk(const std::string& file, std::string_view text);

// What is masked whatever is known of a person. Each gives the text (UTF-8) without it; what looks like it goes, too.

// Words behind "pin" and a separator.
[[nodiscard]] std::string without_pins(std::string_view text);
// Italian tax codes (16 characters), also those whose digits are letters because two persons would have the same.
[[nodiscard]] std::string without_tax_codes(std::string_view text);
// Mail addresses (RFC 5322, the usual form).
[[nodiscard]] std::string without_addresses(std::string_view text);
// Values of the attributes of a name (X.520, as in name_attributes.h and as a log has them): "/CN=...", "DN_surname = ...".
[[nodiscard]] std::string without_name_attributes(std::string_view text);
// Long runs of base64 (RFC 4648) and of hexadecimal digits.
[[nodiscard]] std::string without_encoded(std::string_view text);

} // namespace zvhost
