#include "host/advice.h"
#include "host/doctor_looks.h"
#include "host/library_text.h"
#include "zvCrypt.h"

#include <algorithm>
#include <array>

namespace zvhost {
namespace {

Advice advise_to_add(const std::string& atr) {
    return advise("add-card", "doctor-add-card", {{"atr", atr}, {"files", card_table_places()}});
}

std::vector<std::string> names_in(std::string_view list) {
    std::vector<std::string> names;
    for (std::size_t end = 0; (end = list.find('|')) != std::string_view::npos; list.remove_prefix(end + 1))
        names.emplace_back(list.substr(0, end));
    return names;
}

std::string atr_in(const Looks& looks, const std::string& reader) {
    if (const TableEntry* software = looks.table.software_reader(reader)) return software->atr;
    const auto& readers = looks.service.readers;
    const auto found = std::find_if(readers.begin(), readers.end(),
                                    [&](const PcscReader& one) { return one.name == reader; });
    return found == readers.end() ? "" : found->atr;
}

void tell_module(Looks& looks, const ExaminedCard& card) {
    const char* kind = card.services ? "doctor-services-card" : "doctor-other-card";
    const Values values = {{"reader", card.reader},
                           {"atr", card.atr},
                           {"module", card.module},
                           {"kind", std::vector<Sentence>{Sentence(kind, {})}}};
    if (card.module.empty())
        return looks.add("card-table", Health::wrong, "doctor-table-unknown", values,
                         {advise_to_add(card.atr)});
    const TableEntry* entry = looks.table.entry_for(card.atr);
    if (entry == nullptr) return looks.add("card-table", Health::right, "doctor-table-built-in", values);
    Values with_entry = values;
    with_entry.insert(with_entry.end(),
                      {{"entry", entry->name}, {"file", looks.table.file}, {"line", long{entry->line}}});
    const bool same = entry->module == card.module;
    looks.add("card-table", same ? Health::right : Health::unknown,
              same ? "doctor-table-entry" : "doctor-table-differs", with_entry);
}

void look_into_reader(Looks& looks, std::string reader) {
    std::array<char, ZVC_MODULE_NAME_SIZE> module{};
    const int code = kvGetPKCS11FromATR(reader.data(), module.data());
    const Values values = {{"reader", reader}};
    if (code == ZVC_ERR_NO_CARD) return looks.add("card", Health::right, "doctor-no-card", values);
    if (code == ZVC_ERR_MUTE_CARD)
        return looks.add("card", Health::wrong, "doctor-mute-card", values,
                         {advise("insert-card", "doctor-turn-card")});
    if (code != ZVC_OK)
        return looks.add("card", Health::wrong, "doctor-reader-unreachable",
                         {{"reader", reader}, {"reason", crypto_reason(code)}});
    ExaminedCard card{reader, atr_in(looks, reader), module.data(), {}, kvIsCNSINCARD() != 0};
    looks.add("card", Health::right, "doctor-card", {{"reader", reader}, {"atr", card.atr}});
    tell_module(looks, card);
    looks.cards.push_back(std::move(card));
}

void look_into(Looks& looks, const std::vector<std::string>& names) {
    if (names.empty())
        return looks.add("readers", Health::wrong, "doctor-no-reader", {},
                         {advise("plug-reader", "doctor-plug-reader")});
    looks.add("readers", Health::right, "doctor-readers", {{"readers", names}});
    const std::size_t before = looks.examination.findings.size();
    for (const std::string& name : names)
        look_into_reader(looks, name);
    const auto& findings = looks.examination.findings;
    const bool any = std::any_of(findings.begin() + static_cast<std::ptrdiff_t>(before), findings.end(),
                                 [](const Finding& one) { return one.says.id != "doctor-no-card"; });
    if (!any)
        looks.add("card", Health::warning, "doctor-no-card-anywhere", {},
                  {advise("insert-card", "doctor-insert-card")});
}

// In the place of what was said of a file that is there.
void refuse_table(Looks& looks, const std::vector<Sentence>& reason) {
    std::erase_if(looks.examination.findings, [](const Finding& one) {
        return one.topic == "configuration" && one.health == Health::right;
    });
    looks.add("configuration", Health::wrong, "doctor-configuration-refused",
              {{"file", looks.table.file}, {"reason", reason}},
              {advise("mend-configuration", "doctor-mend-configuration", {{"file", looks.table.file}})});
}

} // namespace

void look_at_service(Looks& looks) {
    looks.table = read_card_table();
    looks.service = ask_service();
    if (looks.service.answers) return looks.add("service", Health::right, "doctor-service");
    const bool needed = looks.table.readers.empty();
    looks.add("service", needed ? Health::wrong : Health::warning,
              needed ? "doctor-service-silent" : "doctor-service-not-needed",
              {{"code", static_cast<long>(looks.service.code)}}, {start_service()});
}

void look_at_table(Looks& looks) {
    const CardTable& table = looks.table;
    if (table.file.empty()) return looks.add("configuration", Health::right, "doctor-configuration-none");
    if (table.unread.empty())
        return looks.add("configuration", Health::right, "doctor-configuration", {{"file", table.file}});
    looks.add("configuration", Health::warning, "doctor-configuration-first",
              {{"file", table.file}, {"unread", table.unread}},
              {advise("one-configuration", "doctor-one-configuration", {{"file", table.file}})});
}

void look_at_readers(Looks& looks) {
    std::array<char, ZVC_READER_LIST_SIZE> list{};
    const int code = kvGetReader(list.data());
    if (code == ZVC_OK) return look_into(looks, names_in(list.data()));
    if (code == ZVC_ERR_NO_SERVICE) return; // told of the service
    const auto reason = crypto_reason(code);
    if (code == ZVC_ERR_CONFIG || code == ZVC_ERR_CONFIG_FILE) return refuse_table(looks, reason);
    looks.add("readers", Health::wrong, "doctor-readers-failed", {{"reason", reason}}, {start_service()});
}

} // namespace zvhost
