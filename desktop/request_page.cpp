#include "desktop/request_page.h"

#include "desktop/dialogs.h"
#include "desktop/files.h"
#include "desktop/text.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

namespace desktop {

RequestPage::RequestPage() : Page("request-page"), told_(tell(QString())), handle_(new FileHandle) {
    add(handle_);
    save_ = add_button(text("window-save-request"), "window-save-request");
    copy_ = add_button(text("window-copy-request"), "window-copy-request");
    again_ = add_button(text("window-request-again"), "window-request-again");
    result_ = tell(QString());
    told_->setObjectName(QStringLiteral("told"));
    result_->setObjectName(QStringLiteral("result"));
    tell(text("window-drop-certificate"));
    auto* const paste = add_button(text("window-paste-certificate"), "window-paste-certificate");
    add(new QWidget, 1);
    connect(button("window-back"), &QPushButton::clicked, this, &RequestPage::left);
    connect(button("window-choose-certificate"), &QPushButton::clicked, this,
            &RequestPage::choose_certificate);
    connect(save_, &QPushButton::clicked, this, &RequestPage::save_request);
    connect(copy_, &QPushButton::clicked, this, &RequestPage::copy_request);
    connect(again_, &QPushButton::clicked, this, &RequestPage::request_wanted);
    connect(paste, &QPushButton::clicked, this, &RequestPage::paste_certificate);
}

void RequestPage::show_waiting(zvhost::Kind kind, const std::string& request) {
    request_ = request;
    const bool there = QFile::exists(from_utf8(request));
    set_heading({"window-waits-heading", {{"kind", kind}}});
    told_->setText(text(there ? "window-request-there" : "window-request-gone", {{"file", request}}));
    handle_->show_file(from_utf8(request));
    for (QWidget* const one : std::initializer_list<QWidget*>{handle_, save_, copy_})
        one->setVisible(there);
    again_->setVisible(!there);
    result_->clear();
}

void RequestPage::save_request() {
    auto* const dialog = ask_for_file(*this, "window-save-request", QFileDialog::AcceptSave);
    dialog->selectFile(QFileInfo(from_utf8(request_)).fileName());
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
        if (QFileInfo(file) != QFileInfo(from_utf8(request_))) QFile::remove(file); // the dialog has asked
        const bool saved =
            QFileInfo(file) == QFileInfo(from_utf8(request_)) || QFile::copy(from_utf8(request_), file);
        result_->setText(text(saved ? "window-saved" : "window-unsaved", {{"file", to_utf8(file)}}));
    });
}

void RequestPage::copy_request() {
    QFile file(from_utf8(request_));
    const bool read = file.open(QIODevice::ReadOnly);
    if (read) QGuiApplication::clipboard()->setText(QString::fromLatin1(file.readAll()));
    result_->setText(text(read ? "window-copied" : "window-request-gone", {{"file", request_}}));
}

void RequestPage::choose_certificate() {
    connect(ask_for_file(*this, "window-choose-certificate", QFileDialog::AcceptOpen),
            &QFileDialog::fileSelected, this, &RequestPage::certificate_given);
}

void RequestPage::paste_certificate() {
    const QString pasted = QGuiApplication::clipboard()->text();
    if (pasted.isEmpty()) return say("window-nothing-to-paste");
    const QString file = file_with(pasted.toUtf8());
    if (file.isEmpty()) return say("window-not-pasted");
    Q_EMIT certificate_given(file);
}

void RequestPage::say(const char* id) {
    result_->setText(text(id));
}

} // namespace desktop
