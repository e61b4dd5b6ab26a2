#include "desktop/situation.h"

#include "host/wishes.h"

#include <algorithm>

namespace desktop {

const zvhost::ReaderFacts* Situation::chosen() const {
    const auto is_it = [this](const zvhost::ReaderFacts& one) { return one.reader.name == reader; };
    const auto found = std::find_if(readers.begin(), readers.end(), is_it);
    return found == readers.end() ? nullptr : &*found;
}

bool Situation::shows(const std::string& card_serial) const {
    return status && status->list.card.state && status->list.card.state->serial == card_serial;
}

Situation look_around(const zvhost::CardChoice& choice, const std::string& card_serial) {
    Situation now;
    try {
        now.readers = zvhost::look_into_readers(choice.module_dir).readers;
        zvhost::CardChoice one = choice;
        one.reader = now.reader = zvhost::reader_of_interest(now.readers, choice.reader, card_serial);
        now.status = zvhost::look_at_card(one, zvhost::USUAL_DAYS);
    } catch (const zvhost::Error& error) {
        now.problem = error;
    } catch (const std::exception& error) {
        now.problem = zvhost::Error(zvhost::Exit::failed, {"unexpected", {{"text", error.what()}}});
    }
    return now;
}

} // namespace desktop
