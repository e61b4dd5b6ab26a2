#pragma once

#include "desktop/errand.h"
#include "desktop/page.h"
#include "desktop/pin_box.h"
#include "host/card_status.h"

#include <QCheckBox>

namespace desktop {

// What is going to be done to the card, in plain sentences, and the PIN for it.
class ConsentPage : public Page {
    Q_OBJECT

  public:
    ConsentPage();

    // Tells what the card shows without a PIN will come, and asks for the PIN.
    void ask(const zvhost::CardStatus& status, const Errand& errand);
    // The card, seen with the PIN, wants more than was told: tells that, and asks whether to go on.
    void ask_again(const zvhost::Plan& plan);

    [[nodiscard]] QWidget* first() const override;
    // What was told, of the plan that was foreseen.
    [[nodiscard]] const zvhost::Plan& foreseen() const { return foreseen_; }

    [[nodiscard]] PinBox& pin() { return *pin_; }

  Q_SIGNALS:
    // With what a person chose; the PIN is there to be taken.
    void accepted(const desktop::Errand& errand);
    void accepted_again();
    void declined();
    // That it cannot be done shows already.
    void impossible(const zvhost::Error& error);

  private:
    void tell_plan();
    void enable();
    void accept();

    zvhost::CardStatus status_;
    Errand errand_;
    zvhost::Plan foreseen_;
    bool again_ = false;
    QLabel* plan_;
    QCheckBox* remove_old_;
    PinBox* pin_;
    QPushButton* go_on_;
};

} // namespace desktop
