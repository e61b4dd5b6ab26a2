#include "desktop/text.h"

#include "host/printable.h"
#include "words/words.h"

namespace desktop {

QString text(const zvhost::Sentence& sentence) {
    return from_utf8(zvhost::printable(words::of(sentence)));
}

QString text(const std::vector<zvhost::Sentence>& sentences) {
    return from_utf8(zvhost::printable(words::of(sentences)));
}

QString text(const char* id, const zvhost::Values& values) {
    return text(zvhost::Sentence(id, values));
}

QString from_utf8(const std::string& bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string to_utf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace desktop
