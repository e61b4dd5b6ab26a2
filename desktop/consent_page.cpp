#include "desktop/consent_page.h"

#include "desktop/text.h"
#include "host/foreseen.h"

#include <QDir>

namespace desktop {
namespace {

// One below the other.
QString in_lines(const std::vector<zvhost::Sentence>& sentences) {
    QStringList lines;
    for (const zvhost::Sentence& sentence : sentences)
        lines << text(sentence);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

ConsentPage::ConsentPage()
    : Page("consent-page"), plan_(tell(QString())), remove_old_(new QCheckBox(text("window-remove-old"))),
      pin_(new PinBox) {
    plan_->setObjectName(QStringLiteral("plan"));
    remove_old_->setObjectName(QStringLiteral("window-remove-old"));
    add(remove_old_);
    add(pin_);
    add(new QWidget, 1);
    connect(button("window-back"), &QPushButton::clicked, this, &ConsentPage::declined);
    go_on_ = button("window-go-on");
    connect(go_on_, &QPushButton::clicked, this, &ConsentPage::accept);
    connect(pin_, &PinBox::changed, this, &ConsentPage::enable);
    connect(pin_, &PinBox::entered, go_on_, &QPushButton::click);
    connect(remove_old_, &QCheckBox::toggled, this, [this](bool wanted) {
        errand_.wishes.remove_old = wanted;
        tell_plan();
    });
}

void ConsentPage::ask(const zvhost::CardStatus& status, const Errand& errand) {
    status_ = status;
    errand_ = errand;
    again_ = false;
    const bool installs = !errand.certificate.empty() || errand.wishes.remove_old;
    const char* const heading = installs ? "window-install-heading" : "window-renew-heading";
    set_heading({errand.finishes ? "window-finish-renewal" : heading, {{"kind", errand.kind()}}});
    remove_old_->setVisible(installs);
    remove_old_->setChecked(errand.wishes.remove_old);
    pin_->show();
    pin_->ask_for(errand.card);
    tell_plan();
    enable();
}

void ConsentPage::ask_again(const zvhost::Plan& plan) {
    again_ = true;
    set_heading({"window-more-heading", {}});
    plan_->setText(in_lines(zvhost::told_plainly(plan)));
    remove_old_->hide();
    pin_->hide();
    enable();
}

QWidget* ConsentPage::first() const {
    return again_ ? Page::first() : pin_->first();
}

void ConsentPage::tell_plan() {
    try {
        foreseen_ = zvhost::foresee_renewal(status_, errand_.wishes, !errand_.certificate.empty());
    } catch (const zvhost::Error& error) {
        return Q_EMIT impossible(error);
    }
    std::vector<zvhost::Sentence> told = zvhost::told_plainly(foreseen_);
    if (errand_.wishes.remove_old || !(errand_.certificate.empty() || errand_.finishes))
        told.push_back(
            {"window-backup-folder", {{"folder", to_utf8(QDir::toNativeSeparators(QDir::currentPath()))}}});
    else if (!errand_.finishes)
        told.insert(told.begin(), {"window-request-how", {}});
    plan_->setText(in_lines(told));
}

void ConsentPage::enable() {
    go_on_->setEnabled(again_ || pin_->complete());
}

void ConsentPage::accept() {
    if (again_)
        Q_EMIT accepted_again();
    else
        Q_EMIT accepted(errand_);
}

} // namespace desktop
