#include "host/reader_watch.h"

#include "host/error.h"
#include "host/module.h"
#include "host/module_folder.h"
#include "host/pcsc_service.h"
#include "host/place.h"
#include "host/service_watch.h"
#include "zvCrypt.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <set>

namespace zvhost {
namespace {

std::vector<std::string> reader_names() {
    std::array<char, ZVC_READER_LIST_SIZE> list{};
    std::vector<std::string> names;
    if (kvGetReader(list.data()) != ZVC_OK) return names;
    const std::string text = list.data();
    for (std::size_t at = 0, end = 0; (end = text.find('|', at)) != std::string::npos; at = end + 1)
        names.push_back(text.substr(at, end - at));
    return names;
}

std::string seen_by_service(const PcscService& service) {
    std::string seen = service.answers ? "service\n" : "no service\n";
    for (const PcscReader& reader : service.readers)
        seen += reader.name + (reader.card ? ": card " : ": ") + reader.atr + "\n";
    return seen;
}

// What a module shows of cards; why it shows nothing, else.
std::string cards_behind(const std::string& module_file, const std::string& module_dir) {
    std::string seen = module_file;
    try {
        const Module module((folder_of_module(module_file, module_dir) / module_file).string());
        for (const CK_SLOT_ID slot : module.slots()) {
            const CK_TOKEN_INFO token = module.token(slot);
            seen += ", " + module.description(slot) + ": " +
                    token_text(token.serialNumber, sizeof token.serialNumber);
        }
    } catch (const Error& error) {
        seen += ", " + error.sentence.id;
    }
    return seen + "\n";
}

// Readers that the configuration alone knows of. Several may have one module.
std::string seen_in_software(const PcscService& service, const std::string& module_dir) {
    std::string seen;
    std::set<std::string> modules;
    for (std::string& name : reader_names()) {
        if (std::any_of(service.readers.begin(), service.readers.end(),
                        [&](const PcscReader& one) { return one.name == name; }))
            continue;
        std::array<char, ZVC_MODULE_NAME_SIZE> module{};
        seen += name + "\n";
        if (kvGetPKCS11FromATR(name.data(), module.data()) == ZVC_OK && module.front() != '\0')
            modules.insert(module.data());
    }
    for (const std::string& module : modules)
        seen += cards_behind(module, module_dir);
    return seen;
}

} // namespace

class ReaderWatch::Watch {
  public:
    explicit Watch(std::string module_dir) : module_dir_(std::move(module_dir)) {}

    [[nodiscard]] bool changed() {
        const PcscService service = ask_service();
        const std::string now = seen_by_service(service) + seen_in_software(service, module_dir_);
        const std::lock_guard lock(mutex_);
        service_ = service;
        const bool other = now != seen_;
        seen_ = now;
        return other;
    }
    void wait(std::chrono::milliseconds at_most) { in_service_.wait(known(), at_most); }
    void wake() { in_service_.wake(); }

  private:
    [[nodiscard]] PcscService known() {
        const std::lock_guard lock(mutex_);
        return service_;
    }

    std::string module_dir_;
    ServiceWatch in_service_;
    std::mutex mutex_; // of what follows
    PcscService service_;
    std::string seen_;
};

ReaderWatch::ReaderWatch(std::string module_dir) : watch_(std::make_unique<Watch>(std::move(module_dir))) {}
ReaderWatch::~ReaderWatch() = default;

bool ReaderWatch::changed() {
    return watch_->changed();
}

void ReaderWatch::wait(std::chrono::milliseconds at_most) {
    watch_->wait(at_most);
}

void ReaderWatch::wake() {
    watch_->wake();
}

} // namespace zvhost
