#pragma once

#include "simcard/virtual/applet.h"
#include "simcard/virtual/options.h"
#include "simcard/virtual/reader_link.h"

namespace simcard {

// Is the card in the reader until the reader is gone or a signal to stop comes.
// @throws std::system_error
void play(ReaderLink& reader, const Options& options, Applet& applet);

} // namespace simcard
