#include "desktop/help_desk.h"

#include "desktop/dialogs.h"
#include "desktop/text.h"
#include "host/doctor.h"
#include "host/error.h"
#include "host/help_desk.h"
#include "words/help_desk_file.h"

#include <QFile>

namespace desktop {
namespace {

zvhost::Sentence saved_in(const std::string& file, const std::string& module_dir) {
    try {
        zvhost::save_for_help_desk(
            file, words::help_desk_text(zvhost::examine(module_dir), false, "zvrenew-desktop " ZV_VERSION));
        return {"window-help-desk-saved", {{"file", file}}};
    } catch (const zvhost::Error& error) {
        return error.sentence;
    }
}

} // namespace

void save_for_help_desk(QWidget& parent, CardWorker& worker, const std::string& module_dir) {
    auto* const dialog = ask_for_file(parent, "window-help-desk", QFileDialog::AcceptSave);
    dialog->selectFile(QStringLiteral("zvrenew-help.txt"));
    QObject::connect(dialog, &QFileDialog::fileSelected, &parent, [&](const QString& file) {
        QFile::remove(file); // the dialog has asked
        worker.start([&parent, &worker, module_dir, to = to_utf8(file)] {
            const zvhost::Sentence told = saved_in(to, module_dir);
            worker.tell([&parent, told] { say(parent, told); });
        });
    });
}

} // namespace desktop
