#include "desktop/certificate_bar.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace desktop {
namespace {

// Each tells itself from light and from dark ground.
QColor colour_of(Standing standing) {
    switch (standing) {
    case Standing::valid:
        return {0x2E, 0x8B, 0x57};
    case Standing::due:
        return {0xE0, 0x8A, 0x00};
    case Standing::ended:
        return {0xD0, 0x3A, 0x3A};
    case Standing::replaced:
        break;
    }
    return {0x88, 0x88, 0x88};
}

} // namespace

Standing standing_of(const zvhost::ListedCertificate& listed) {
    if (listed.replaced) return Standing::replaced;
    if (listed.days_left < 0) return Standing::ended;
    return listed.due ? Standing::due : Standing::valid;
}

CertificateBar::CertificateBar(const zvhost::ListedCertificate& listed, Span whole, std::time_t now)
    : own_{listed.record.begins, listed.record.ends}, whole_(whole), now_(now),
      standing_(standing_of(listed)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize CertificateBar::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 30, fontMetrics().height() + 8};
}

double CertificateBar::place_of(std::time_t time) const {
    const auto all = static_cast<double>(std::max<std::time_t>(whole_.ends - whole_.begins, 1));
    const double part = static_cast<double>(time - whole_.begins) / all;
    return std::clamp(part, 0.0, 1.0) * width();
}

void CertificateBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar(place_of(own_.begins), 4, std::max(place_of(own_.ends) - place_of(own_.begins), 3.0),
                     height() - 8);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 1)); // seen in each contrast
    painter.setBrush(colour_of(standing_));
    painter.drawRoundedRect(bar, 4, 4);
    const double today = place_of(now_);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 2, Qt::DashLine));
    painter.drawLine(QPointF(today, 0), QPointF(today, height()));
}

} // namespace desktop
