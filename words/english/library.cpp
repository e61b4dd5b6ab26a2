#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row LIBRARY_ROWS[] = {
    {"because", N_(": {what} ({code})")},
    {"code-alone", N_(" ({code})")},
    {"code-with-message", N_("{code}, {message}")},
    {"library-not-sent", N_("stopped before it was sent, or the result is too large")},
    {"library-refused", N_("the step was refused")},
    {"library-silent", N_("no reason was given")},
    {"library-unsupported", N_("the card is not supported, or a temporary file could not be used")},
    {"library-unusable", N_("no usable module, or no slot for the reader")},
    {"quoted", N_("\"{text}\"")},
    {"quoted-with-meaning", N_("\"{text}\" ({meaning})")},
    {"two-quotes", N_("{first}, {second}")},
};

} // namespace

Rows library_rows() {
    return LIBRARY_ROWS;
}

} // namespace words
