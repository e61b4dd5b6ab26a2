#pragma once

#include <string>

namespace zvhost {

// The library, the crypto library and this engine open a card's module again and again; through the front it is started
// once. A module that the front cannot stand before is used as it is, and so is every one where there is no front, or where
// ZVRENEW_FRONT is "off".

// What the engine loads in place of a module.
[[nodiscard]] std::string module_way(const std::string& module_path);

// What the library gets in its place: a link of the same name, by which its rules go, in a folder of this process's own.
struct LibraryWay {
    std::string folder;
    std::string path;
};
[[nodiscard]] LibraryWay library_way(const std::string& module_path);

// The front's file; empty where none is used.
[[nodiscard]] std::string front_file();

// Ends the modules that the front has started; what is used next starts anew.
void end_modules();

} // namespace zvhost
