#pragma once

#include <QLabel>
#include <QString>

namespace desktop {

// A file, to be dragged to another window.
class FileHandle : public QLabel {
    Q_OBJECT

  public:
    FileHandle();
    void show_file(const QString& file);

  protected:
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    QString file_;
};

} // namespace desktop
