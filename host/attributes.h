#pragma once

#include "host/module.h"

#include <vector>

namespace zvhost {

// Attributes of an object, asked for in one call with room guessed for each: cards are slow. What that call does not give,
// because it is longer, or is refused, or stands behind one that the module stopped at, is asked for by itself
// where it is wanted.
class Attributes {
  public:
    Attributes(const Session& session, CK_OBJECT_HANDLE object, const std::vector<CK_ATTRIBUTE_TYPE>& types);

    // An attribute; empty when the object has none or keeps it secret. @throws Error when it cannot be read:
    // that is no absence.
    [[nodiscard]] Bytes get(CK_ATTRIBUTE_TYPE type) const;
    // The same of an object that nothing depends on: empty also when it cannot be read.
    [[nodiscard]] Bytes get_if_given(CK_ATTRIBUTE_TYPE type) const;

  private:
    struct Given {
        CK_ATTRIBUTE_TYPE type;
        Bytes value;
    };
    [[nodiscard]] const Bytes* given(CK_ATTRIBUTE_TYPE type) const;

    const Session& session_;
    CK_OBJECT_HANDLE object_;
    std::vector<Given> given_;
};

// What CKA_CLASS says; CKO_VENDOR_DEFINED when that is none.
[[nodiscard]] CK_OBJECT_CLASS as_class(const Bytes& value);

} // namespace zvhost
