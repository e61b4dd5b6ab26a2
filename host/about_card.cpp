#include "host/about_card.h"

#include "host/card_view.h"

namespace zvhost {

Error with_card(OpenedCard& card, Error error) {
    if (error.exit == Exit::failed && !error.card) error.card = card_now(card).contents;
    if (error.exit == Exit::failed && error.advice.empty())
        error.advice.push_back({"repeat", Sentence{"leave-card-and-repeat", {}}});
    error.tell_card(card.facts());
    return error;
}

} // namespace zvhost
