#include "cli/twin.h"

#include "cli/engine.h"
#include "host/error.h"
#include "host/installation.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace fs = std::filesystem;

namespace cli {
namespace {

constexpr const char* NAME = "twin";
constexpr const char* READER = "Rehearsal";
constexpr const char* PIN = "12345678";
constexpr const char* PIN_FILE = "pin";
constexpr const char* OUTPUT = "output";

std::string hexadecimal(const std::string& bytes) {
    std::string digits;
    for (const char byte : bytes)
        digits += fmt::format("{:02X}", static_cast<unsigned char>(byte));
    return digits;
}

const char* class_name(CK_OBJECT_CLASS type) {
    if (type == CKO_CERTIFICATE) return "certificate";
    return type == CKO_PUBLIC_KEY ? "public key" : "data";
}

// What the simulated card's tool takes.
Json description_of(const PublicCard& card) {
    Json json = {{"serial", card.card.state->serial},
                 {"label", card.card.state->label},
                 {"services_card", card.card.services_card},
                 {"memory_left", card.card.state->room ? Json(*card.card.state->room) : Json()},
                 {"objects", Json::array()}};
    for (const PublicObject& object : card.objects)
        json["objects"].push_back({{"class", class_name(object.type)},
                                   {"id", hexadecimal(object.id)},
                                   {"label", hexadecimal(object.label)},
                                   {"value", hexadecimal(object.value)},
                                   {"application", hexadecimal(object.application)}});
    return json;
}

} // namespace

Twin::Twin(const PublicCard& original, const SimulatedCard& programs, const HeldSignals& signals)
    : programs_(programs), signals_(signals), folder_("zvrenew-rehearsal") {
    try {
        make(original);
    } catch (const fs::filesystem_error& error) {
        throw Error(Exit::failed, {"unexpected", {{"text", std::string(error.what())}}});
    }
}

// There are rules that go by the name of a card's module: the twin's has the same.
void Twin::make(const PublicCard& original) const {
    const std::string module = fs::path(original.card.module).filename();
    fs::create_directory(folder_.path() / "module");
    fs::copy_file(programs_.module, folder_.path() / "module" / module);
    folder_.write(PIN_FILE, PIN);
    fs::permissions(folder_.path() / PIN_FILE, fs::perms::owner_read);
    folder_.write("card.json", description_of(original).dump(-1, ' ', false, Json::error_handler_t::replace));
    const ChildResult made = tool({"twin", "card.json", "--name", NAME, "--reader", READER, "--pin", PIN,
                                   "--module", module, "--config", "zvcrypt.conf"});
    if (made.exit != 0) throw Error(Exit::failed, {"no-twin-made", {{"reason", made.text}}});
}

ChildResult Twin::renew(std::vector<std::string> words) const {
    words.insert(words.begin(), program_path());
    words.insert(words.end(), {"--reader", READER, "--module-dir", (folder_.path() / "module").string(),
                               "--pin-file", PIN_FILE});
    return run(std::move(words));
}

ChildResult Twin::issue(const std::string& request, const std::string& kind,
                        const std::string& certificate) const {
    return tool({"issue", request, "--kind", kind, "--out", certificate});
}

Json Twin::objects() const {
    const ChildResult listed = tool({"list", NAME, "--pin", PIN, "--json"});
    if (listed.exit != 0) throw Error(Exit::failed, {"twin-unreadable", {{"reason", listed.text}}});
    return Json::parse(listed.text).at("objects");
}

ChildResult Twin::tool(std::vector<std::string> words) const {
    words.insert(words.begin(), programs_.tool);
    return run(std::move(words));
}

ChildResult Twin::run(std::vector<std::string> words) const {
    const int exit =
        run_child({std::move(words), environment_in(folder_.path()), folder_.path(), folder_.path() / OUTPUT},
                  signals_);
    return {exit, without_folder(folder_.read(OUTPUT))};
}

// Its log goes with it, too.
std::string Twin::without_folder(const std::string& text) const {
    const std::string folder = folder_.path().string() + "/";
    std::string kept;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(folder + REHEARSAL_LOG) != std::string::npos) continue;
        for (std::size_t at = 0; (at = line.find(folder, at)) != std::string::npos;)
            line.erase(at, folder.size());
        kept += line + "\n";
    }
    return kept.substr(0, kept.find_last_not_of('\n') + 1);
}

} // namespace cli
