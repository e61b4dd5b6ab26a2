#include "desktop/reader_picture.h"

#include <QPainter>

namespace desktop {
namespace {

constexpr double WIDE = 120, HIGH = 90; // of the drawing

void draw_card(QPainter& painter, const QPalette& colours, bool known) {
    painter.setBrush(colours.color(known ? QPalette::Highlight : QPalette::Mid));
    painter.drawRoundedRect(QRectF(28, 6, 64, 52), 5, 5);
    painter.setBrush(colours.color(QPalette::Base)); // its contacts
    painter.drawRoundedRect(QRectF(40, 20, 18, 14), 2, 2);
    if (!known) painter.drawLine(QPointF(34, 52), QPointF(86, 12));
}

void draw_reader(QPainter& painter, const QPalette& colours) {
    painter.setBrush(colours.color(QPalette::Button));
    painter.drawRoundedRect(QRectF(12, 46, 96, 38), 6, 6);
    painter.drawLine(QPointF(24, 54), QPointF(96, 54));
}

} // namespace

ReaderPicture::ReaderPicture() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ReaderPicture::show_state(Shows state) {
    state_ = state;
    update();
}

QSize ReaderPicture::sizeHint() const {
    const int lines = fontMetrics().height() * 5;
    return {static_cast<int>(lines * WIDE / HIGH), lines};
}

void ReaderPicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / WIDE, height() / HIGH);
    QPen pen(palette().color(QPalette::WindowText), 2);
    if (state_ == Shows::no_reader) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    if (state_ == Shows::card || state_ == Shows::unknown_card)
        draw_card(painter, palette(), state_ == Shows::card);
    draw_reader(painter, palette());
}

} // namespace desktop
