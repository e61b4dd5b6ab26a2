#pragma once

#include "desktop/page.h"
#include "host/progress.h"

#include <QElapsedTimer>
#include <QProgressBar>
#include <QTimer>

namespace desktop {

// The card is at work.
class WorkPage : public Page {
    Q_OBJECT

  public:
    WorkPage();

    // Begins anew; before the first step the card is opened.
    void begin(const zvhost::Sentence& what);
    void show_step(const zvhost::Step& step);
    void show_notice(const zvhost::Sentence& sentence);

  Q_SIGNALS:
    void stop_wanted();

  private:
    void show_time();

    QLabel* step_;
    QLabel* time_;
    QLabel* notice_;
    QProgressBar* bar_;
    QPushButton* stop_;
    QTimer ticks_;
    QElapsedTimer since_;
    std::optional<std::chrono::milliseconds> usual_;
};

} // namespace desktop
