#pragma once

#include <QWidget>

namespace desktop {

// A reader, with a card in it or without, drawn.
class ReaderPicture : public QWidget {
    Q_OBJECT

  public:
    enum class Shows { no_reader, no_card, unknown_card, card };

    ReaderPicture();
    void show_state(Shows state);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Shows state_ = Shows::no_reader;
};

} // namespace desktop
