#include "desktop/start_page.h"

#include "desktop/text.h"

#include <QGridLayout>
#include <algorithm>
#include <ctime>

namespace desktop {
namespace {

using zvhost::Kind, zvhost::ReaderFacts;

bool advises(const Situation& now, const char* key) {
    const auto is_it = [&](const zvhost::Advice& advice) { return advice.key == key; };
    return now.problem && std::any_of(now.problem->advice.begin(), now.problem->advice.end(), is_it);
}

ReaderPicture::Shows picture_of(const Situation& now) {
    const ReaderFacts* reader = now.chosen();
    if (reader == nullptr) return ReaderPicture::Shows::no_reader;
    if (!reader->reader.card || advises(now, "insert-card")) return ReaderPicture::Shows::no_card;
    return reader->reader.module.empty() ? ReaderPicture::Shows::unknown_card : ReaderPicture::Shows::card;
}

// Of its own accord that does not change.
bool is_trouble(const Situation& now) {
    return now.problem && !advises(now, "plug-reader") && picture_of(now) != ReaderPicture::Shows::no_card;
}

const char* heading_of(const Situation& now) {
    if (now.status) return "window-card-heading";
    if (is_trouble(now)) return now.readers.empty() ? "window-unlisted-heading" : "window-trouble-heading";
    return now.readers.empty() ? "window-no-reader-heading" : "window-no-card-heading";
}

} // namespace

StartPage::StartPage()
    : Page("start-page"), readers_(new QComboBox), picture_(new ReaderPicture), card_(new QLabel),
      timeline_(new Timeline), actions_(new QVBoxLayout) {
    readers_->setObjectName(QStringLiteral("readers"));
    readers_->setAccessibleName(text("window-readers"));
    readers_->hide();
    card_->setObjectName(QStringLiteral("card"));
    card_->setTextFormat(Qt::PlainText);
    card_->setWordWrap(true);
    auto* const top = new QWidget;
    auto* const beside = new QGridLayout(top);
    beside->setContentsMargins({});
    beside->addWidget(picture_, 0, 0, 2, 1);
    beside->addWidget(readers_, 0, 1);
    beside->addWidget(card_, 1, 1);
    beside->setColumnStretch(1, 1);
    add(top);
    add(timeline_);
    auto* const actions = new QWidget;
    actions->setLayout(actions_);
    actions_->setContentsMargins({});
    add(actions);
    add(new QWidget, 1);
    connect(button("window-help-desk"), &QPushButton::clicked, this, &StartPage::help_wanted);
    connect(readers_, &QComboBox::textActivated, this, &StartPage::reader_chosen);
    set_heading({"window-looking-heading", {}});
}

void StartPage::show_situation(const Situation& now) {
    const QWidget* const held = first() == Page::first() ? nullptr : focusWidget();
    const QString name = held == nullptr ? QString() : held->objectName();
    set_heading({heading_of(now), {}});
    picture_->show_state(picture_of(now));
    show_readers(now);
    show_card(now);
    show_actions(now);
    if (!isVisible() || readers_->hasFocus()) return;
    auto* const still_there = name.isEmpty() ? nullptr : findChild<QPushButton*>(name);
    (still_there == nullptr ? first() : still_there)->setFocus();
}

QWidget* StartPage::first() const {
    auto* const action = actions_->parentWidget()->findChild<QPushButton*>();
    return action == nullptr ? Page::first() : action;
}

void StartPage::show_readers(const Situation& now) {
    readers_->clear();
    for (const ReaderFacts& one : now.readers)
        readers_->addItem(from_utf8(one.reader.name));
    readers_->setCurrentText(from_utf8(now.reader));
    readers_->setVisible(now.readers.size() > 1);
}

void StartPage::show_card(const Situation& now) {
    std::vector<zvhost::ListedCertificate> certificates;
    if (now.status) certificates = now.status->list.certificates;
    timeline_->show_certificates(certificates, std::time(nullptr));
    std::vector<zvhost::Sentence> told;
    if (now.problem) {
        told.push_back(now.problem->sentence);
        for (const zvhost::Advice& advice : now.problem->advice)
            told.push_back(advice.says);
    } else if (now.status && now.status->list.card.state) {
        const zvhost::CardState& state = *now.status->list.card.state;
        told.emplace_back(
            "list-card",
            zvhost::Values{{"serial", state.serial}, {"label", state.label}, {"reader", now.reader}});
    }
    card_->setText(text(told));
}

void StartPage::show_actions(const Situation& now) {
    while (QLayoutItem* const item = actions_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    if (is_trouble(now))
        connect(add_action("window-try-again"), &QPushButton::clicked, this, &StartPage::look_wanted);
    if (!now.status) return;
    for (const zvhost::WaitingRenewal& one : zvhost::waiting_renewals(*now.status)) {
        const char* const stands = one.proved ? "window-untidied" : "window-untried";
        add_told(one.stored.empty() ? "window-waits" : stands, {{"kind", one.kind}});
        const char* const id = one.stored.empty() ? "window-take-certificate" : "window-finish-renewal";
        connect(add_action(id, one.kind), &QPushButton::clicked, this,
                [this, one] { Q_EMIT waiting_wanted(one); });
    }
    for (const Kind kind : zvhost::renewals_due(*now.status))
        connect(add_action("window-renew", kind), &QPushButton::clicked, this,
                [this, kind] { Q_EMIT renewal_wanted(kind); });
    if (actions_->isEmpty() && !now.status->list.certificates.empty()) add_told("window-nothing-due");
}

void StartPage::add_told(const char* id, const zvhost::Values& values) {
    auto* const label = new QLabel(text(id, values));
    label->setObjectName(QStringLiteral("waits"));
    label->setWordWrap(true);
    actions_->addWidget(label);
}

QPushButton* StartPage::add_action(const char* id, std::optional<Kind> kind) {
    const std::string name = kind ? std::string(id) + "-" + zvhost::kind_name(*kind) : id;
    const zvhost::Values values = kind ? zvhost::Values{{"kind", *kind}} : zvhost::Values{};
    QPushButton* const made = named_button(text(id, values), name.c_str());
    actions_->addWidget(made, 0, Qt::AlignLeft);
    made->show(); // what is hidden yet does not get the keyboard where the window has not come up
    return made;
}

} // namespace desktop
