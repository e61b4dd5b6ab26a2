#include "simcard/tool/twin_description.h"

#include "simcard/authority/errors.h"
#include "simcard/common/hexadecimal.h"

#include <nlohmann/json.hpp>

namespace simcard {
namespace {

using nlohmann::json;

std::string bytes_in(const json& object, const char* key) {
    const auto bytes = from_hexadecimal(object.value(key, std::string()));
    if (!bytes) throw Refusal("The description's \"" + std::string(key) + "\" is not hexadecimal.");
    return *bytes;
}

CK_OBJECT_CLASS class_named(const std::string& name) {
    if (name == "certificate") return CKO_CERTIFICATE;
    if (name == "public key") return CKO_PUBLIC_KEY;
    if (name == "data") return CKO_DATA;
    throw Refusal("The description has an object of a class \"" + name + "\".");
}

SeenObject object_in(const json& entry) {
    return {class_named(entry.at("class")), bytes_in(entry, "id"), bytes_in(entry, "label"),
            bytes_in(entry, "value"), bytes_in(entry, "application")};
}

CardDescription description_in(const json& card) {
    CardDescription description;
    description.serial = card.value("serial", "");
    description.label = card.value("label", "");
    description.services_card = card.value("services_card", false);
    if (const auto left = card.find("memory_left"); left != card.end() && !left->is_null())
        description.memory_left = left->get<unsigned long>();
    for (const json& entry : card.at("objects"))
        description.objects.push_back(object_in(entry));
    return description;
}

} // namespace

CardDescription read_description(std::string_view text) {
    try {
        return description_in(json::parse(text));
    } catch (const json::exception& error) {
        throw Refusal(std::string("The description of the card cannot be read (") + error.what() + ").");
    }
}

} // namespace simcard
