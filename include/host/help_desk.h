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

[[nodiscard]] std::vector<HelpDeskText> help_desk_texts();

// Takes out of a text what belongs to a person. What was taken out says what it was: "[name]", "[tax code]".
class Mask {
  public:
    // @param with_names  leaves names, tax codes and the user's folder; a PIN goes in any case
    Mask(const Examination& examination, bool with_names);

    [[nodiscard]] std::string operator()(std::string text) const;
    // The same for a log, where certificates and requests stand in base64 and hexadecimal.
    [[nodiscard]] std::string of_log(std::string text) const;

  private:
    bool with_names_;
    std::vector<std::string> names_; // longest first
    std::vector<std::string> homes_;
    std::vector<std::string> users_;
};

// Makes the file, which must not be there yet; its owner alone may read it. @throws Error
void save_for_help_desk(const std::string& file, std::string_view text);

// What is masked whatever is known of a person. Each gives the text without it.
[[nodiscard]] std::string without_pins(std::string_view text);
[[nodiscard]] std::string without_tax_codes(std::string_view text);
[[nodiscard]] std::string without_addresses(std::string_view text);
[[nodiscard]] std::string without_name_attributes(std::string_view text);
[[nodiscard]] std::string without_encoded(std::string_view text);

} // namespace zvhost
