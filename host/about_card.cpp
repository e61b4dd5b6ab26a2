#include "host/about_card.h"

#include "host/card_session.h"
#include "host/refused_pin.h"

namespace zvhost {
namespace {

Advice run_again() {
    return {"repeat", Sentence{"leave-card-and-repeat", {}}};
}

} // namespace

Error with_card(OpenedCard& card, Error error) {
    if (error.exit == Exit::failed && !error.card) error.card = card_now(card).contents;
    if (error.exit == Exit::failed && error.advice.empty())
        error.advice.push_back(card.pin.refused() ? check_pin() : run_again());
    error.tell_card(card.facts());
    return error;
}

} // namespace zvhost
