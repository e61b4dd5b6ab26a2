#include "desktop/file_handle.h"

#include "desktop/text.h"

#include <QDrag>
#include <QFileInfo>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyle>
#include <QUrl>

namespace desktop {

FileHandle::FileHandle() {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setFrameShape(QFrame::StyledPanel);
    setCursor(Qt::OpenHandCursor);
}

void FileHandle::show_file(const QString& file) {
    file_ = file;
    setText(desktop::text("window-drag-request", {{"file", to_utf8(QFileInfo(file).fileName())}}));
}

void FileHandle::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton) || file_.isEmpty()) return;
    auto* const drag = new QDrag(this); // which is Qt's from here on
    auto* const carried = new QMimeData;
    carried->setUrls({QUrl::fromLocalFile(file_)});
    drag->setMimeData(carried);
    drag->setPixmap(style()->standardIcon(QStyle::SP_FileIcon).pixmap(32));
    drag->exec(Qt::CopyAction);
}

} // namespace desktop
