#include "desktop/pin_field.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace desktop {
namespace {

bool is_typed(const QKeyEvent& event) {
    const QString typed = event.text();
    return !typed.isEmpty() && !event.modifiers().testFlag(Qt::ControlModifier) &&
           std::all_of(typed.begin(), typed.end(), [](QChar c) { return c.isPrint() || c.isSurrogate(); });
}

} // namespace

PinField::PinField() {
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    // Whatever way a text comes that was not typed, it does not stay.
    connect(this, &QLineEdit::textEdited, this, &PinField::show_length);
}

zvhost::Pin PinField::take() {
    zvhost::Pin given = std::exchange(pin_, zvhost::Pin());
    wipe();
    return given;
}

void PinField::wipe() {
    pin_.wipe();
    sizes_.clear();
    show_length();
}

void PinField::keyPressEvent(QKeyEvent* event) {
    if (is_typed(*event)) {
        const QString typed = event->text();
        if (typed.front().isLetter())
            Q_EMIT caps_lock_seen(typed.front().isUpper() != event->modifiers().testFlag(Qt::ShiftModifier));
        return add(typed);
    }
    if (event->matches(QKeySequence::DeleteStartOfWord) || event->key() == Qt::Key_Delete) return wipe();
    if (event->key() == Qt::Key_Backspace) return hasSelectedText() ? wipe() : remove_last();
    QLineEdit::keyPressEvent(event);
}

void PinField::inputMethodEvent(QInputMethodEvent* event) {
    add(event->commitString());
    event->accept();
}

void PinField::add(const QString& characters) {
    for (const QString& one : characters.split(QString(), Qt::SkipEmptyParts)) {
        const QByteArray bytes = one.toUtf8();
        for (const char c : bytes)
            pin_.add(c);
        sizes_.append(bytes.size());
    }
    show_length();
}

void PinField::remove_last() {
    if (sizes_.isEmpty()) return;
    for (qsizetype i = sizes_.takeLast(); i > 0; --i)
        pin_.remove_last();
    show_length();
}

// Setting the whole text also forgets what could be undone.
void PinField::show_length() {
    setText(QString(sizes_.size(), QLatin1Char('0')));
    Q_EMIT changed();
}

} // namespace desktop
