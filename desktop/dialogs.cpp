#include "desktop/dialogs.h"

#include "desktop/text.h"

#include <QDir>
#include <QMessageBox>

namespace desktop {

QFileDialog* ask_for_file(QWidget& parent, const char* title, QFileDialog::AcceptMode mode) {
    auto* const dialog = new QFileDialog(&parent, text(title).remove(QLatin1Char('&')));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(mode);
    if (mode == QFileDialog::AcceptSave) dialog->setDirectory(QDir::homePath());
    dialog->setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog->open();
    return dialog;
}

void say(QWidget& parent, const zvhost::Sentence& sentence) {
    auto* const box = new QMessageBox(QMessageBox::Information, parent.windowTitle(), text(sentence),
                                      QMessageBox::Ok, &parent);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace desktop
