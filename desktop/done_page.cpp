#include "desktop/done_page.h"

#include "desktop/text.h"

#include <QFileInfo>

namespace desktop {

DonePage::DonePage() : Page("done-page") {
    connect(button("window-finish"), &QPushButton::clicked, this, &DonePage::left);
}

void DonePage::show_done(const zvhost::Renewal& renewal) {
    const zvhost::Values about = {
        {"kind", renewal.kind},
        {"pair", renewal.pair},
        {"old", renewal.removed},
        {"backup", to_utf8(QFileInfo(from_utf8(renewal.backup)).absoluteFilePath())}};
    clear();
    set_heading({"window-done-heading", {{"kind", renewal.kind}}});
    std::vector<zvhost::Sentence> told{{"renewal-done", about}};
    if (renewal.signed_with)
        told.emplace_back(*renewal.signed_with ? "window-proved" : "renewal-compared", about);
    if (!renewal.removed.empty()) told.emplace_back("renewal-removed", about);
    if (!renewal.backup.empty()) told.emplace_back("renewal-backup", about);
    for (const zvhost::Advice& advice : renewal.advice)
        told.push_back(advice.says);
    tell(told);
    add(new QWidget, 1);
}

} // namespace desktop
