#pragma once

#include "desktop/page.h"
#include "desktop/reader_picture.h"
#include "desktop/situation.h"
#include "desktop/timeline.h"

#include <QComboBox>

namespace desktop {

// What is there: readers, the card, how it stands with its certificates, and what can be done about it.
class StartPage : public Page {
    Q_OBJECT

  public:
    StartPage();

    void show_situation(const Situation& now);
    [[nodiscard]] QWidget* first() const override;

  Q_SIGNALS:
    void reader_chosen(const QString& name);
    void renewal_wanted(zvhost::Kind kind);
    void waiting_wanted(const zvhost::WaitingRenewal& renewal);
    void help_wanted();
    void look_wanted();

  private:
    void show_readers(const Situation& now);
    void show_card(const Situation& now);
    void show_actions(const Situation& now);
    void add_told(const char* id, const zvhost::Values& values = {});
    QPushButton* add_action(const char* id, std::optional<zvhost::Kind> kind = {});

    QComboBox* readers_;
    ReaderPicture* picture_;
    QLabel* card_;
    Timeline* timeline_;
    QVBoxLayout* actions_;
};

} // namespace desktop
