#pragma once

#include "host/sentence.h"

#include <QFileDialog>

namespace desktop {

// Opens a dialog for a file; it is gone once it is answered.
QFileDialog* ask_for_file(QWidget& parent, const char* title, QFileDialog::AcceptMode mode);

// Says something beside the page.
void say(QWidget& parent, const zvhost::Sentence& sentence);

} // namespace desktop
