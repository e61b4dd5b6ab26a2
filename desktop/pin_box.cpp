#include "desktop/pin_box.h"

#include "desktop/text.h"

#include <QVBoxLayout>

namespace desktop {
namespace {

using zvhost::PinState;

constexpr int PIN_WIDE = 30; // characters

QLabel* hint(const char* name) {
    auto* const label = new QLabel;
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->hide();
    return label;
}

} // namespace

PinBox::PinBox()
    : field_(new PinField), tries_(hint("pin-tries")), caps_lock_(hint("window-caps-lock")),
      final_try_(new QCheckBox(text("window-final-try"))) {
    auto* const label = new QLabel(text("window-pin"));
    label->setBuddy(field_);
    field_->setObjectName(QStringLiteral("window-pin"));
    field_->setAccessibleName(text("window-pin").remove(QLatin1Char('&')));
    field_->setMaximumWidth(field_->fontMetrics().averageCharWidth() * PIN_WIDE);
    caps_lock_->setText(text("window-caps-lock"));
    final_try_->setObjectName(QStringLiteral("window-final-try"));

    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins({});
    for (QWidget* const part :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(tries_), static_cast<QWidget*>(field_),
          static_cast<QWidget*>(caps_lock_), static_cast<QWidget*>(final_try_)})
        all->addWidget(part);

    connect(field_, &PinField::changed, this, &PinBox::changed);
    connect(field_, &PinField::returnPressed, this, &PinBox::entered);
    connect(field_, &PinField::caps_lock_seen, caps_lock_, &QLabel::setVisible);
    connect(final_try_, &QCheckBox::toggled, this, &PinBox::changed);
}

void PinBox::ask_for(const zvhost::CardFacts& card) {
    const PinState state = card.state && card.state->pin ? *card.state->pin : PinState::no_warning;
    const zvhost::Sentence tries = zvhost::tries_told(state);
    field_->wipe();
    field_->setEnabled(state != PinState::locked);
    std::vector<zvhost::Sentence> told;
    if (!tries.empty()) told.emplace_back("pin-card-says", zvhost::Values{{"tries", std::vector{tries}}});
    if (state == PinState::locked) told.emplace_back("unlock-first", zvhost::Values{});
    if (card.state && card.state->keypad) told.emplace_back("pin-keypad", zvhost::Values{});
    tries_->setText(text(told));
    tries_->setVisible(!told.empty());
    field_->setAccessibleDescription(tries_->text());
    caps_lock_->hide();
    final_try_->setChecked(false);
    final_try_->setVisible(state == PinState::last_try);
}

bool PinBox::complete() const {
    return !field_->empty() && (final_try_->isHidden() || final_try_->isChecked());
}

} // namespace desktop
