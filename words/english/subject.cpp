#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row SUBJECT_ROWS[] = {
    {"attribute-character", N_("{name} has a character that it may not have")},
    {"attribute-control-character", N_("{name} has a control character in it")},
    {"attribute-empty", N_("{name} is empty")},
    {"attribute-not-carried", N_("\"{name}\" is an attribute that a request does not carry")},
    {"attribute-repeated", N_("{name} stands {times} times")},
    {"attribute-taken-apart", N_("{name} contains \"{part}\", which would be taken for an attribute")},
    {"attribute-too-long", N_("{name} has {bytes} bytes, a request carries {most}")},
    {"subject-attribute-not-carried", N_("A request does not carry the attribute \"{name}\".")},
    {"subject-empty", N_("it has no attribute that a request carries")},
    {"subject-form", N_("A subject looks like this: /C=IT/O=Acme/CN=Name.")},
    {"subject-too-long", N_("it has {characters} characters, {over} more than a request can carry")},
};

} // namespace

Rows subject_rows() {
    return SUBJECT_ROWS;
}

} // namespace words
