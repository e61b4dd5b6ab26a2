#include "desktop/files.h"
#include "desktop/text.h"
#include "desktop/window.h"
#include "host/installation.h"
#include "host/log_folder.h"
#include "words/language.h"
#include "words/words.h"

#include <sys/resource.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QTranslator>
#include <filesystem>

namespace {

// What is told is in these words from here on.
void speak(const QString& language) {
    const std::string wanted = language.isEmpty() ? words::usual_language() : desktop::to_utf8(language);
    words::face_is(words::Face::window);
    words::speak(wanted, std::filesystem::path(zvhost::program_folder()) / ZV_CATALOGUES);
    const QString spoken = desktop::from_utf8(words::spoken_language());
    QLocale::setDefault(QLocale(spoken));
    // Qt's own, on the buttons of its dialogs; English where it has none.
    auto* const own = new QTranslator(qApp);
    if (own->load(QStringLiteral("qtbase_") + spoken, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(own);
}

// The theme's, else the one that was installed with the program.
QIcon own_icon() {
    const auto own = std::filesystem::path(zvhost::program_folder()).parent_path() / ZV_DATADIR
                     "/icons/hicolor/scalable/apps/zvrenew-desktop.svg";
    return QIcon::fromTheme(QStringLiteral("zvrenew-desktop"), QIcon(desktop::from_utf8(own.string())));
}

} // namespace

int main(int argc, char** argv) {
    const rlimit none{}; // no dump of its memory holds a PIN
    (void)::setrlimit(RLIMIT_CORE, &none);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zvrenew-desktop"));
    QApplication::setApplicationVersion(QStringLiteral(ZV_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("zvrenew-desktop"));
    QApplication::setWindowIcon(own_icon());

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addVersionOption();
    const QString name = QStringLiteral("NAME"), folder = QStringLiteral("DIR");
    const QCommandLineOption lang(QStringLiteral("lang"), QStringLiteral("Language: en or it"), name);
    const QCommandLineOption reader(QStringLiteral("reader"), QStringLiteral("Reader that holds the card"),
                                    name);
    const QCommandLineOption card(QStringLiteral("card"), QStringLiteral("Serial number of the card"), name);
    const QCommandLineOption modules(QStringLiteral("module-dir"),
                                     QStringLiteral("Folder of the cards' modules"), folder);
    const QCommandLineOption files(
        QStringLiteral("folder"), QStringLiteral("Folder of the renewal's files (else the user's documents)"),
        folder);
    parser.addOptions({lang, reader, card, modules, files});
    parser.process(application);

    speak(parser.value(lang));
    zvhost::CardChoice choice;
    choice.reader = desktop::to_utf8(parser.value(reader));
    choice.module_dir = desktop::to_utf8(parser.value(modules));
    if (const QString unusable = desktop::use_folder(parser.value(files)); !unusable.isEmpty()) {
        QMessageBox::critical(
            nullptr, QApplication::applicationName(),
            desktop::text("window-folder-unusable", {{"folder", desktop::to_utf8(unusable)}}));
        return 1;
    }
    (void)zvhost::make_log_folder();
    desktop::Window window(choice, desktop::to_utf8(parser.value(card)));
    window.resize(720, 560);
    window.show();
    return QApplication::exec();
}
