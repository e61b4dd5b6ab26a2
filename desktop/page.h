#pragma once

#include "host/sentence.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

namespace desktop {

[[nodiscard]] QPushButton* named_button(const QString& label, const char* name);

// A page of the window: a heading, what it is about below it, buttons at its foot. Each text is shown as it is, never as markup,
// and can be selected; a widget's object name is its sentence's.
class Page : public QWidget {
    Q_OBJECT

  public:
    explicit Page(const char* name);

    [[nodiscard]] QString heading() const { return heading_->text(); }
    // Says to a screen reader that the page is shown, and gives the keyboard to its first widget.
    void announce();
    // Which widget has the keyboard when the page is shown.
    [[nodiscard]] virtual QWidget* first() const { return buttons_.isEmpty() ? nullptr : buttons_.last(); }

  protected:
    void set_heading(const zvhost::Sentence& sentence);
    // Empties what is between heading and buttons.
    void clear();
    // Adds to it.
    void add(QWidget* widget, int stretch = 0);
    QLabel* tell(const QString& text);
    void tell(const std::vector<zvhost::Sentence>& sentences);
    // Adds a button there, as wide as its text.
    QPushButton* add_button(const QString& label, const char* name);
    // Adds a button at the foot; the last one is the page's own aim.
    QPushButton* button(const char* id);

  private:
    QLabel* heading_;
    QVBoxLayout* body_;
    QBoxLayout* foot_;
    QList<QPushButton*> buttons_;
};

} // namespace desktop
