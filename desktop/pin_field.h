#pragma once

#include "host/pin.h"

#include <QLineEdit>
#include <QList>

namespace desktop {

// A field for a PIN. What is typed goes into a Pin and nowhere else: the field itself, its history and the accessibility
// tree hold a stand-in a character, and nothing is taken from the clipboard or given to it.
class PinField : public QLineEdit {
    Q_OBJECT

  public:
    PinField();

    // What was typed; the field is empty then.
    [[nodiscard]] zvhost::Pin take();
    void wipe();
    [[nodiscard]] bool empty() const { return sizes_.isEmpty(); }

  Q_SIGNALS:
    void changed();
    // Whether capital letters come without the shift key.
    void caps_lock_seen(bool on);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    void add(const QString& characters);
    void remove_last();
    void show_length();

    zvhost::Pin pin_;
    QList<qsizetype> sizes_; // of its characters, in bytes
};

} // namespace desktop
