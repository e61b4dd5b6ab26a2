#pragma once

#include "desktop/page.h"
#include "desktop/remedies.h"

namespace desktop {

// Something failed: what, what is on the card now, what to do, and buttons that do it.
class ProblemPage : public Page {
    Q_OBJECT

  public:
    ProblemPage();

    void show_problem(const zvhost::Error& error, const Errand& errand);
    [[nodiscard]] QWidget* first() const override { return first_; }

  Q_SIGNALS:
    void remedy_wanted(const desktop::Remedy& remedy);
    void help_wanted();
    void left();

  private:
    QPushButton* to_start_;
    QWidget* first_;
};

} // namespace desktop
