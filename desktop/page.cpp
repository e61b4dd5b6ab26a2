#include "desktop/page.h"

#include "desktop/text.h"

#include <QAccessible>
#include <QScrollArea>

namespace desktop {
namespace {

constexpr double LARGER = 1.5; // than the desktop's usual letters

} // namespace

QPushButton* named_button(const QString& label, const char* name) {
    auto* const made = new QPushButton(label);
    made->setObjectName(QString::fromLatin1(name));
    made->setAutoDefault(true); // Enter presses the one that has the keyboard
    return made;
}

Page::Page(const char* name) : heading_(new QLabel), body_(new QVBoxLayout), foot_(new QHBoxLayout) {
    setObjectName(QString::fromLatin1(name));
    heading_->setObjectName(QStringLiteral("heading"));
    heading_->setTextFormat(Qt::PlainText);
    heading_->setWordWrap(true);
    QFont font = heading_->font();
    font.setPointSizeF(font.pointSizeF() * LARGER);
    heading_->setFont(font);

    auto* const inside = new QWidget;
    inside->setLayout(body_);
    auto* const scrolls = new QScrollArea; // large letters in a small window
    scrolls->setWidgetResizable(true);
    scrolls->setFrameShape(QFrame::NoFrame);
    scrolls->setFocusPolicy(Qt::NoFocus);
    scrolls->setWidget(inside);

    auto* const all = new QVBoxLayout(this);
    all->addWidget(heading_);
    all->addWidget(scrolls, 1);
    all->addLayout(foot_);
    foot_->addStretch(1);
}

void Page::announce() {
    QAccessibleEvent event(heading_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
    if (QWidget* const has_keyboard = first()) has_keyboard->setFocus();
}

void Page::set_heading(const zvhost::Sentence& sentence) {
    heading_->setText(text(sentence));
}

void Page::clear() {
    while (QLayoutItem* const item = body_->takeAt(0)) {
        if (QWidget* const widget = item->widget()) {
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
}

void Page::add(QWidget* widget, int stretch) {
    body_->addWidget(widget, stretch);
}

QLabel* Page::tell(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::NoFocus); // the keyboard goes to what can be done
    body_->addWidget(label);
    return label;
}

void Page::tell(const std::vector<zvhost::Sentence>& sentences) {
    for (const zvhost::Sentence& sentence : sentences)
        tell(text(sentence))->setObjectName(from_utf8(sentence.id));
}

QPushButton* Page::add_button(const QString& label, const char* name) {
    QPushButton* const made = named_button(label, name);
    body_->addWidget(made, 0, Qt::AlignLeft);
    return made;
}

QPushButton* Page::button(const char* id) {
    QPushButton* const made = named_button(text(id), id);
    foot_->addWidget(made);
    buttons_.append(made);
    return made;
}

} // namespace desktop
