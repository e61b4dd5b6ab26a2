#include "cli/spoken.h"

#include "host/installation.h"
#include "words/language.h"

#include <algorithm>
#include <string>

namespace cli {
namespace {

// What stands behind --lang; empty where nothing does that there are words in.
std::string language_given(int argc, char** argv) {
    const std::string option = "--lang";
    std::string given;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == option && i + 1 < argc) given = argv[i + 1];
        if (word.starts_with(option + "=")) given = word.substr(option.size() + 1);
    }
    const bool known =
        std::find(words::LANGUAGES.begin(), words::LANGUAGES.end(), given) != words::LANGUAGES.end();
    return known ? given : "";
}

} // namespace

void choose_language(int argc, char** argv) {
    const std::string given = language_given(argc, argv);
    words::speak(given.empty() ? words::usual_language() : given,
                 std::filesystem::path(zvhost::program_folder()) / ZV_CATALOGUES);
}

} // namespace cli
