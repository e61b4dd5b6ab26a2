#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row WAITING_ROWS[] = {
    {"card-at-work", N_("The card is at work: {seconds} s")},
    {"card-at-work-before", N_("The card is at work: {seconds} s (the last time it took {before} s)")},
    {"card-at-work-step", N_("The card is at work, step {number} of {of}: {seconds} s")},
    {"card-at-work-step-before",
     N_("The card is at work, step {number} of {of}: {seconds} s (the last time it took {before} s)")},
    {"stopped-too-late",
     N_("It was to stop, but its last step was under way. That was finished: everything is done.")},
    {"stopped-waiting", N_("Stopped while waiting for the card.")},
    {"stops-after-step",
     N_("It stops when the card has done the step that it is in. Leave the card in the reader.")},
    {"waits-for-card", N_("Waiting for the card (Ctrl-C ends it). {missing}")},
};

} // namespace

Rows waiting_rows() {
    return WAITING_ROWS;
}

} // namespace words
