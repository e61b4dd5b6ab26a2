#include "host/reminders.h"

#include "host/certificate_record.h"
#include "host/journal_problem.h"
#include "host/wishes.h"

#include <string>

namespace zvhost {
namespace {

constexpr std::time_t A_WEEK = std::time_t{7} * 24 * 60 * 60;

// A clock that was set back makes nobody wait longer.
bool was_told(const RememberedCertificate& one, std::time_t now) {
    return one.told_at != 0 && one.told_at <= now && now - one.told_at < A_WEEK;
}

bool is_that(const RememberedCertificate& a, const RememberedCertificate& b) {
    return a.kind == b.kind && a.id == b.id && a.serial == b.serial;
}

// A services card holds one certificate of its own. What is not due in the usual days has to be told so.
std::string what_to_renew(const RememberedCertificate& one, int days, std::time_t now) {
    std::string argument = kind_name(one.kind);
    if (one.kind == Kind::services) argument += " --remove-old";
    if (!ends_within(one.ends, USUAL_DAYS, now)) argument += " --days " + std::to_string(days);
    return argument;
}

Reminder reminder_of(const RememberedCard& card, const RememberedCertificate& one, int days,
                     std::time_t now) {
    Reminder reminder{card.serial, card.seen_at, one, one.ends < now, card.is_pending(one.kind), {}, {}};
    const Values about = {{"kind", one.kind},
                          {"argument", what_to_renew(one, days, now)},
                          {"id", one.id},
                          {"card", card.serial},
                          {"seen", Moment{card.seen_at}},
                          {"end", Moment{one.ends}}};
    const std::string when = reminder.ended ? "reminder-ended" : "reminder-ends";
    reminder.title = {when + "-title", about};
    reminder.says = {when + (reminder.under_way ? "-under-way" : ""), about};
    return reminder;
}

} // namespace

std::vector<Reminder> reminders(const Journal& journal, int days, std::time_t now) {
    std::vector<Reminder> found;
    for (const RememberedCard& card : journal.cards())
        for (const RememberedCertificate& one : card.certificates)
            if (!one.replaced && ends_within(one.ends, days, now) && !was_told(one, now))
                found.push_back(reminder_of(card, one, days, now));
    return found;
}

void note_told(const Journal& journal, const Reminder& reminder, std::time_t now) {
    note_journal(journal.change(reminder.card, [&](RememberedCard& card) {
        for (RememberedCertificate& one : card.certificates)
            if (is_that(one, reminder.certificate)) one.told_at = now;
    }));
}

} // namespace zvhost
