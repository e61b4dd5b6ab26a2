#pragma once

namespace cli {

// Has all that is said from now on in the language that the command line names, else in the environment's. Before
// anything is said: what --help tells is made along with the options.
void choose_language(int argc, char** argv);

} // namespace cli
