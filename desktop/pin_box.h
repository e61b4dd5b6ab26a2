#pragma once

#include "desktop/pin_field.h"
#include "host/card_facts.h"

#include <QCheckBox>
#include <QLabel>

namespace desktop {

// Where the PIN of a card is typed, with what a person should know meanwhile: how many tries the card says are left, that
// the last one wants a tick, and that the capitals key is on.
class PinBox : public QWidget {
    Q_OBJECT

  public:
    PinBox();

    // Begins anew, for that card.
    void ask_for(const zvhost::CardFacts& card);
    [[nodiscard]] zvhost::Pin take() { return field_->take(); }
    void wipe() { field_->wipe(); }
    [[nodiscard]] bool final_try() const { return final_try_->isChecked(); }
    // Whether there is a PIN, and the tick where it is wanted.
    [[nodiscard]] bool complete() const;
    [[nodiscard]] QWidget* first() const { return field_; }

  Q_SIGNALS:
    void changed();
    void entered();

  private:
    PinField* field_;
    QLabel* tries_;
    QLabel* caps_lock_;
    QCheckBox* final_try_;
};

} // namespace desktop
