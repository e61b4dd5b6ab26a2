#pragma once

#include "zvRenew.h"

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

namespace zvtest {

// A list as a host gives it.
struct HostList {
    HostList() {
        for (std::size_t i = 0; i < texts.size(); ++i)
            entries[i] = texts[i].data();
    }
    [[nodiscard]] std::vector<std::string> records() const {
        std::vector<std::string> all;
        for (std::size_t i = 1; i <= std::strtoul(entries[0], nullptr, 10); ++i)
            all.emplace_back(entries[i]);
        return all;
    }

    std::array<std::array<char, ZV_LIST_ENTRY_SIZE>, ZV_LIST_ENTRIES> texts{};
    std::array<char*, ZV_LIST_ENTRIES> entries{};
};

// What a reading gives back.
struct Reading {
    int result = 0;
    std::vector<std::string> cns, pra, aut;
    int pending_cns = 7, pending_pra = 7, pending_aut = 7;
    std::string key_pra, key_aut;

    // The subject of the first certificate for a CNS or a signature.
    [[nodiscard]] std::string subject() const {
        const auto& records = cns.empty() ? pra : cns;
        return records.empty() ? "2.5.4.6=IT2.5.4.3=Nobody" : records[0].substr(0, records[0].find('#'));
    }
};

// Reads the card in that reader (null: the first) as a host does.
inline Reading read_card(const char* reader, char* pin, const std::string& module_dir) {
    Reading reading;
    HostList cns, pra, aut;
    cns.texts[0][0] = '0';
    std::string name = reader != nullptr ? reader : "";
    char key_pra[ZV_KEY_ID_SIZE] = "", key_aut[ZV_KEY_ID_SIZE] = "";
    reading.result = rinnovo_Card_readCerts(reader != nullptr ? name.data() : nullptr, pin, 0,
                                            cns.entries.data(), pra.entries.data(), aut.entries.data(),
                                            &reading.pending_cns, &reading.pending_pra, &reading.pending_aut,
                                            key_pra, key_aut, nullptr, module_dir.c_str());
    reading.cns = cns.records(), reading.pra = pra.records(), reading.aut = aut.records();
    reading.key_pra = key_pra, reading.key_aut = key_aut;
    return reading;
}

} // namespace zvtest
