#include "desktop/problem_page.h"

#include "desktop/text.h"
#include "words/on_card.h"

namespace desktop {

ProblemPage::ProblemPage() : Page("problem-page") {
    connect(button("window-help-desk"), &QPushButton::clicked, this, &ProblemPage::help_wanted);
    to_start_ = button("window-to-start");
    connect(to_start_, &QPushButton::clicked, this, &ProblemPage::left);
    first_ = to_start_;
}

void ProblemPage::show_problem(const zvhost::Error& error, const Errand& errand) {
    clear();
    set_heading({"window-problem-heading", {}});
    tell({error.sentence});
    if (error.card)
        tell({{error.card->untouched ? "window-untouched" : "window-on-card",
               {{"now", words::of(*error.card)}}}});
    for (const zvhost::Advice& advice : error.advice)
        tell({advice.says});
    first_ = to_start_;
    for (const Remedy& remedy : remedies_for(error, errand)) {
        QPushButton* const does = add_button(remedy.label, "remedy");
        connect(does, &QPushButton::clicked, this, [this, remedy] { Q_EMIT remedy_wanted(remedy); });
        if (first_ == to_start_) first_ = does;
    }
    add(new QWidget, 1);
}

} // namespace desktop
