#include "desktop/situation.h"

#include "host/wishes.h"

#include <algorithm>

namespace desktop {
namespace {

using zvhost::ReaderFacts;

std::string reader_among(const std::vector<ReaderFacts>& readers, const std::string& chosen,
                         const std::string& card) {
    const auto first = [&](const auto& is_it) {
        const auto found = std::find_if(readers.begin(), readers.end(), is_it);
        return found == readers.end() ? std::string() : found->reader.name;
    };
    for (const std::string& name :
         {first([&](const ReaderFacts& one) { return one.reader.name == chosen; }),
          first([&](const ReaderFacts& one) { return one.state && one.state->serial == card; }),
          first([](const ReaderFacts& one) { return !one.reader.module.empty(); }),
          first([](const ReaderFacts& one) { return one.reader.card; })})
        if (!name.empty()) return name;
    return readers.empty() ? std::string() : readers.front().reader.name;
}

} // namespace

const ReaderFacts* Situation::chosen() const {
    const auto found = std::find_if(readers.begin(), readers.end(),
                                    [this](const ReaderFacts& one) { return one.reader.name == reader; });
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
        one.reader = now.reader = reader_among(now.readers, choice.reader, card_serial);
        now.status = zvhost::look_at_card(one, zvhost::USUAL_DAYS);
    } catch (const zvhost::Error& error) {
        now.problem = error;
    } catch (const std::exception& error) {
        now.problem = zvhost::Error(zvhost::Exit::failed, {"unexpected", {{"text", error.what()}}});
    }
    return now;
}

} // namespace desktop
