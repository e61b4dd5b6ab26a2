#pragma once

#include "desktop/card_worker.h"

#include <QWidget>
#include <string>

namespace desktop {

// Asks where to, and saves what a help desk wants to see: no PIN goes to a card for it.
void save_for_help_desk(QWidget& parent, CardWorker& worker, const std::string& module_dir);

} // namespace desktop
