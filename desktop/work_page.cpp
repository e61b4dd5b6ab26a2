#include "desktop/work_page.h"

#include "desktop/text.h"

#include <algorithm>

namespace desktop {
namespace {

constexpr int TICK = 200; // milliseconds

} // namespace

WorkPage::WorkPage()
    : Page("work-page"), step_(tell(QString())), time_(tell(QString())), notice_(tell(QString())),
      bar_(new QProgressBar), stop_(button("window-stop")) {
    step_->setObjectName(QStringLiteral("step"));
    time_->setObjectName(QStringLiteral("time"));
    notice_->setObjectName(QStringLiteral("notice"));
    bar_->setTextVisible(false);
    add(bar_);
    add(new QWidget, 1);
    connect(stop_, &QPushButton::clicked, this, [this] {
        stop_->setEnabled(false);
        Q_EMIT stop_wanted();
    });
    ticks_.setInterval(TICK);
    connect(&ticks_, &QTimer::timeout, this, &WorkPage::show_time);
}

void WorkPage::begin(const zvhost::Sentence& what) {
    set_heading(what);
    for (QLabel* const label : {step_, time_, notice_})
        label->clear();
    bar_->setRange(0, 0);
    bar_->setAccessibleName(heading());
    stop_->setEnabled(true);
    usual_.reset();
    since_.start();
    ticks_.start();
}

void WorkPage::show_step(const zvhost::Step& step) {
    step_->setText(
        text("window-step",
             {{"number", long{step.number}}, {"of", long{step.of}}, {"what", std::vector{step.what}}}));
    bar_->setAccessibleName(step_->text());
    usual_ = step.usual;
    since_.start();
    show_time();
}

void WorkPage::show_notice(const zvhost::Sentence& sentence) {
    notice_->setText(text(sentence));
}

// A step that takes longer than the last time is as good as done: the bar stays just below its end.
void WorkPage::show_time() {
    const auto passed = since_.elapsed();
    const auto seconds = [](qint64 of) { return static_cast<long>((of + 500) / 1000); };
    if (!usual_) {
        bar_->setRange(0, 0);
        time_->setText(text("window-time", {{"seconds", seconds(passed)}}));
        return;
    }
    const int whole = static_cast<int>(std::max<qint64>(usual_->count(), 1));
    bar_->setRange(0, whole);
    bar_->setValue(static_cast<int>(std::min<qint64>(passed, whole - whole / 20)));
    time_->setText(text("window-time-before", {{"seconds", seconds(passed)}, {"before", seconds(whole)}}));
}

} // namespace desktop
