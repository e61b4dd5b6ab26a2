#pragma once

#include "host/sentence.h"

#include <string>
#include <string_view>
#include <vector>

namespace zvhost {

// One attribute of a name: a short name ("CN") and its value, in UTF-8.
struct NameAttribute {
    std::string name;
    std::string value;
};

// A distinguished name as requests carry it, in its order.
class DistinguishedName {
  public:
    // Reads the library's form, numeric identifiers that follow each other without a separator
    // ("2.5.4.6=IT2.5.4.3=NAME"). Text before the first identifier is dropped.
    [[nodiscard]] static DistinguishedName from_oid_form(std::string_view text);
    // Reads "/C=IT/O=Acme/CN=Name", or the library's form when the text begins with a digit.
    // @throws Error for an attribute that requests do not carry.
    [[nodiscard]] static DistinguishedName from_user(std::string_view text);
    // Takes attributes that are known one by one, named by their identifiers ("2.5.4.6"). Those that requests
    // do not carry keep that name.
    [[nodiscard]] static DistinguishedName from_oids(std::vector<NameAttribute> attributes);

    // The library's form.
    [[nodiscard]] std::string oid_form() const;
    // "C=IT, O=Acme, CN=Name"
    [[nodiscard]] std::string readable() const;
    // The first value of an attribute; empty when there is none.
    [[nodiscard]] std::string value(std::string_view name) const;
    [[nodiscard]] const std::vector<NameAttribute>& attributes() const { return attributes_; }

    // Says why a request would not carry this name whole; empty when it would.
    [[nodiscard]] Sentence why_not_requestable() const;

  private:
    std::vector<NameAttribute> attributes_;
    bool exact_ = false; // no value can have swallowed the attribute behind it
};

} // namespace zvhost
