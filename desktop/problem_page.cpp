#include "desktop/problem_page.h"

#include "desktop/text.h"
#include "words/on_card.h"

namespace desktop {

ProblemPage::ProblemPage() : Page("problem-page") {
    connect(button("window-help-desk"), &QPushButton::clicked, this, &ProblemPage::help_wanted);
    connect(button("window-to-start"), &QPushButton::clicked, this, &ProblemPage::left);
    remedy_button_ = button("window-try-again");
    connect(remedy_button_, &QPushButton::clicked, this, [this] { Q_EMIT remedy_wanted(remedy_); });
}

void ProblemPage::show_problem(const zvhost::Error& error) {
    clear();
    set_heading({"window-problem-heading", {}});
    tell({error.sentence});
    if (error.card)
        tell(text("window-on-card", {{"now", words::of(*error.card)}}))
            ->setObjectName(QStringLiteral("on-card"));
    for (const zvhost::Advice& advice : error.advice)
        tell({advice.says});
    remedy_ = Remedy::again;
    remedy_button_->setText(text("window-try-again"));
    add(new QWidget, 1);
}

} // namespace desktop
