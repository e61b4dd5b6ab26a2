#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/notification.h"
#include "cli/reminder_switch.h"
#include "cli/run_quietly.h"
#include "host/installation.h"
#include "host/reminders.h"
#include "words/words.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <ctime>

namespace cli {
namespace {

Error untold(const std::string& reason) {
    return {Exit::failed, Sentence{"desktop-untold", {{"reason", reason}}},
            Advice{"see-status", Sentence("see-status", {})}};
}

Json reminder_json(const Reminder& reminder, std::time_t now) {
    const RememberedCertificate& one = reminder.certificate;
    return {{"serial", reminder.card},
            {"kind", kind_name(one.kind)},
            {"id", one.id},
            {"not_after", instant(one.ends)},
            {"days_left", days_until(one.ends, now)},
            {"request_under_way", reminder.under_way},
            {"seen_at", instant(reminder.seen_at)}};
}

// The window, where it was installed with this program.
std::string window_program() {
    const std::string path = program_folder() + "/zvrenew-desktop";
    return ::access(path.c_str(), X_OK) == 0 ? path : std::string();
}

// Whoever is offered the window need not know the program in the terminal.
Notification shown_for(const Reminder& reminder, bool opens_window) {
    const words::Face face = opens_window ? words::Face::window : words::Face::terminal;
    Notification shown{words::of(reminder.title), words::of(reminder.says, face), reminder.ended};
    if (opens_window) {
        shown.action = words::of(Sentence("reminder-open", {}));
        shown.subject = reminder.card;
    }
    return shown;
}

// Nobody may ever close what is shown; the next day's reminder is not to find this one waiting.
void open_when_wanted(Desktop& desktop, const std::string& window) {
    desktop.await_answers(std::chrono::hours(1), [&window](const std::string& card) {
        (void)start_apart({window, "--card", card});
    });
}

Report tell(const std::vector<Reminder>& found, bool offers, std::time_t now) {
    const auto desktop = std::make_shared<Desktop>();
    const std::string window = offers ? window_program() : "";
    Report report;
    report.json["reminders"] = Json::array();
    for (const Reminder& reminder : found) {
        const Notification shown = shown_for(reminder, !window.empty());
        if (const std::string problem = desktop->show(shown); !problem.empty()) throw untold(problem);
        note_told(Journal(), reminder, now);
        report.text += (report.text.empty() ? "" : "\n") + words::of(reminder.says);
        report.json["reminders"].push_back(reminder_json(reminder, now));
    }
    if (!window.empty()) report.afterwards = [desktop, window] { open_when_wanted(*desktop, window); };
    return report;
}

Report report_on_switch(const Switched& done) {
    Report report;
    report.text = words::of(done.says);
    report.json = {{"reminders_by", or_null(done.by)}, {"file", or_null(done.file)}};
    report.advice = done.advice;
    return report;
}

} // namespace

Report run_remind(const RemindOptions& options) {
    if (options.enable && options.disable)
        throw Error(Exit::refused, Sentence("enable-or-disable", {}), Advice{"help", Sentence("help", {})});
    if (options.enable) return report_on_switch(turn_reminders_on());
    if (options.disable) return report_on_switch(turn_reminders_off());
    const std::time_t now = std::time(nullptr);
    const std::vector<Reminder> found = reminders(Journal(), options.days, now);
    if (!found.empty()) return tell(found, options.open, now);
    Report report;
    report.text = words::of(Sentence("nothing-to-remind-of", {}));
    report.json["reminders"] = Json::array();
    return report;
}

} // namespace cli
