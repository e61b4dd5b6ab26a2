#include "desktop/timeline.h"

#include "desktop/certificate_bar.h"
#include "desktop/text.h"

#include <QLabel>
#include <algorithm>

namespace desktop {
namespace {

constexpr std::time_t DAY = std::time_t{24} * 60 * 60;
constexpr std::time_t MARGIN = 30 * DAY; // so that today is seen at either end

const char* word_of(const zvhost::ListedCertificate& listed) {
    switch (standing_of(listed)) {
    case Standing::valid:
        return "window-valid";
    case Standing::due:
        return "window-due";
    case Standing::ended:
        return "window-ended";
    case Standing::replaced:
        break;
    }
    return "window-replaced";
}

Span whole_of(const std::vector<zvhost::ListedCertificate>& certificates, std::time_t now) {
    Span whole{now - MARGIN, now + MARGIN};
    for (const zvhost::ListedCertificate& one : certificates)
        whole = {std::min(whole.begins, one.record.begins), std::max(whole.ends, one.record.ends)};
    return whole;
}

QString told(const zvhost::ListedCertificate& listed) {
    const zvhost::CertificateRecord& record = listed.record;
    return text("window-certificate",
                {{"kind", record.kind},
                 {"holder", zvhost::holder_of(record)},
                 {"begins", zvhost::Moment{record.begins}},
                 {"ends", zvhost::Moment{record.ends}},
                 {"standing", std::vector{zvhost::Sentence(word_of(listed), {{"days", listed.days_left}})}}});
}

} // namespace

Timeline::Timeline() : rows_(new QVBoxLayout(this)) {
    rows_->setContentsMargins({});
}

void Timeline::show_certificates(const std::vector<zvhost::ListedCertificate>& certificates,
                                 std::time_t now) {
    while (QLayoutItem* const item = rows_->takeAt(0)) {
        item->widget()->deleteLater();
        delete item;
    }
    const Span whole = whole_of(certificates, now);
    for (const zvhost::ListedCertificate& listed : certificates) {
        auto* const label = new QLabel(told(listed));
        label->setObjectName(QStringLiteral("certificate"));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        rows_->addWidget(label);
        auto* const bar = new CertificateBar(listed, whole, now);
        rows_->addWidget(bar);
    }
    if (!certificates.empty())
        rows_->addWidget(new QLabel(text("window-today", {{"day", zvhost::Moment{now}}})));
}

} // namespace desktop
