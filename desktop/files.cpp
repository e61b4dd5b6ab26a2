#include "desktop/files.h"

#include "desktop/text.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <list>

namespace desktop {

QString use_folder(const QString& wanted) {
    QString folder = wanted;
    if (folder.isEmpty()) folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder)) folder = wanted.isEmpty() ? QDir::homePath() : wanted;
    return QDir::setCurrent(folder) ? QString() : folder;
}

std::string new_request_file(const std::string& card_serial, const char* kind) {
    QString name = QStringLiteral("request-%1-%2").arg(QString::fromLatin1(kind), from_utf8(card_serial));
    for (QChar& c : name)
        if (!c.isLetterOrNumber() && c != QLatin1Char('-')) c = QLatin1Char('_');
    return to_utf8(QDir::current().absoluteFilePath(name + QStringLiteral(".b64")));
}

// It is gone with the program: what it holds is the authority's to give again.
QString file_with(const QByteArray& certificate) {
    static std::list<QTemporaryDir> folders;
    QFile file(folders.emplace_back().filePath(QStringLiteral("certificate.pem")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return {};
    return file.write(certificate) == certificate.size() && file.flush() ? file.fileName() : QString();
}

} // namespace desktop
