#pragma once

#include "desktop/page.h"
#include "host/renew.h"

namespace desktop {

// The renewal is done: what was proved, and what is on the card now.
class DonePage : public Page {
    Q_OBJECT

  public:
    DonePage();

    void show_done(const zvhost::Renewal& renewal);

  Q_SIGNALS:
    void left();
};

} // namespace desktop
