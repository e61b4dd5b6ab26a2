#pragma once

#include "desktop/page.h"
#include "host/error.h"

namespace desktop {

// Something failed: what, what is on the card now, what to do, and one button that does it.
class ProblemPage : public Page {
    Q_OBJECT

  public:
    // What can be done about it.
    enum class Remedy { again, other_certificate, look };

    ProblemPage();

    void show_problem(const zvhost::Error& error);

  Q_SIGNALS:
    void remedy_wanted(desktop::ProblemPage::Remedy remedy);
    void help_wanted();
    void left();

  private:
    QPushButton* remedy_button_;
    Remedy remedy_ = Remedy::look;
};

} // namespace desktop
