#include "cli/about_card.h"

#include "cli/card_view.h"

namespace cli {

Report about_card(OpenedCard& card, const std::function<Report()>& work) {
    const auto leave = [&](Stop stop) {
        if (stop.exit == Exit::failed && !stop.card) stop.card = card_now(card).contents;
        if (stop.exit == Exit::failed && stop.advice.empty())
            stop.advice.push_back({"repeat", "Leave the card in the reader and run the same command again."});
        stop.tell_card(card.facts());
        return stop;
    };
    try {
        return work();
    } catch (const Stop& stop) {
        throw leave(stop);
    } catch (const std::exception& error) {
        throw leave({Exit::failed, error.what()});
    }
}

} // namespace cli
