#pragma once

#include "pkcs11.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/authority/files.h"
#include "simcard/authority/renewal.h"
#include "simcard/common/hexadecimal.h"
#include "tests/support/host.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <utility>

namespace zvtest {

/// A module with its card. Each step tells whether it went as wanted, and notes why not.
struct Run {
    std::filesystem::path module;
    std::string pin;
    simcard::Authority authority = simcard::Authority::open("authority");
    Reading got{};
    int result = 0;
    std::string complaint{}, certificate{}, older{};

    bool compare(const std::string& found, const std::string& wanted) {
        if (found != wanted) complaint = "\"" + found + "\" instead of \"" + wanted + "\"";
        return found == wanted;
    }
    bool succeeded(int code) {
        result = code;
        if (code != 0) complaint = refusal();
        return code == 0;
    }
    /// The step before must have failed with that.
    bool failedWith(int code) {
        return compare(std::to_string(std::exchange(result, 0)), std::to_string(code));
    }

    /// A reading: numbers of certificates for CNS, PRA, AUT; what is pending; the two identifiers.
    bool reads(const std::string& wanted, const std::string& withPin = "12345") {
        got = readCard(nullptr, withPin, module.parent_path());
        std::string text;
        for (const auto* list : {&got.cns, &got.pra, &got.aut})
            text += std::to_string(list->size());
        text += std::string(got.pendingCNS == 1 ? " CNS" : "") + (got.pendingPRA == 1 ? " PRA" : "");
        return succeeded(got.result) && compare(text + " " + got.keyPRA + " " + got.keyAUT, wanted);
    }
    bool findsFree(const std::string& wanted) {
        char keyPRA[ZV_KEY_ID_SIZE] = "", keyAUT[ZV_KEY_ID_SIZE] = "";
        return succeeded(rinnovo_Card_findFreeCKAID(nullptr, pin.data(), keyPRA, keyAUT)) &&
               compare(std::string(keyPRA) + " " + keyAUT, wanted);
    }
    /// A request with the subject of the signer's certificate; the authority answers it.
    bool requests(std::string pending, std::string signer, bool discard = false) {
        const bool signature = signer.starts_with("DS");
        if (signature) got.cns.clear();
        std::vector<char> out(ZV_REQUEST_SIZE);
        const auto make = signature ? rinnovo_Card_createCertRequestPRA : rinnovo_Card_createCertRequestAUT;
        if (!succeeded(
                make(out.data(), pending.c_str(), pin.data(), signer.data(), got.subject().c_str(), discard)))
            return false;
        const auto renewal = simcard::answer_request(authority, out.data(), {});
        older = std::move(certificate);
        certificate = simcard::certificate_text(*renewal.certificate, simcard::CertificateForm::pem);
        return true;
    }
    bool stores(std::string label, std::string pending, bool keepOld, std::string chain) {
        const auto store = label.starts_with("DS") ? rinnovo_Card_saveCertPRA : rinnovo_Card_saveCertAUT;
        label.resize(ZV_KEY_ID_SIZE);
        return succeeded(store(pin.data(), label.data(), pending.data(), chain.data(), keepOld));
    }
    /// Stores, the old pair deleted; where that fails, it shows whether a host can still store.
    bool replaces(const std::string& label, const std::string& pending) {
        if (stores(label, pending, false, certificate)) return true;
        const std::string failure = complaint;
        complaint = stores(label, pending, true, certificate) ? "0; then on the card: " + card() : complaint;
        complaint = failure + "; repeated with keepOld true: result " + complaint;
        result = ZV_FAILED;
        return false;
    }
    bool holds(const std::string& wanted) { return compare(card(), wanted); }

    /// What is on the card, as pkcs11-tool sees it: identifiers of complete pairs, others with what they are.
    [[nodiscard]] std::string card() const {
        using Kinds = std::multiset<std::string>;
        static const std::regex name(" *(ID|label): *'?([^']*?)'?\n");
        const std::string command =
            "pkcs11-tool --module " + module.string() + " -l --pin " + pin + " -O 2>/dev/null";
        const std::unique_ptr<FILE, int (*)(FILE*)> listing(::popen(command.c_str(), "r"), ::pclose);
        std::map<std::string, Kinds> all;
        std::string kind, text;
        char line[512];
        for (std::cmatch part; std::fgets(line, sizeof line, listing.get()) != nullptr;)
            if (*line != ' ')
                kind = std::string(line, *line == 'P' ? 2 : 1); // Certificate, Data, Private and Public Key
            else if (std::regex_match(line, part, name) && (part[1] == "ID") != (kind == "D"))
                all[simcard::from_hexadecimal(part[2].str()).value_or(part[2])].insert(kind);
        for (auto& [id, kinds] : all) {
            const std::string number = " (" + std::to_string(kinds.size()) + " objects)";
            if (kinds == Kinds{"C", "Pu"}) kinds.erase("Pu"); // OpenSC shows the key in a certificate as well
            text += (text.empty() ? "" : ", ") + id;
            text += kinds == Kinds{"C", "Pr", "Pu"} ? ""
                    : kinds == Kinds{"C"}           ? " (certificate)"
                    : kinds == Kinds{"D"}           ? " (data)"
                    : kinds == Kinds{"Pr", "Pu"}    ? " (keys)"
                                                    : number;
        }
        return text;
    }

    /// What the module refused, by the library's log, and what the library made of it.
    [[nodiscard]] std::string refusal() const {
        // The log writes a code as "0x" and decimal digits, one or two lines behind the call.
        static const std::regex refused(R"((C_\w+)[^\n]*\n(?:[^\n]*\n)?(?:Errore|Ret Code) = 0x(\d+)\n)");
        const std::string log = std::filesystem::exists("log") ? simcard::read_file("log") : "";
        std::set<std::string> calls;
        char code[32];
        for (std::sregex_iterator at(log.begin(), log.end(), refused), end; at != end; ++at) {
            std::snprintf(code, sizeof code, " 0x%lX, ", std::stoul((*at)[2]));
            if ((*at)[2] != "0") calls.insert(std::string((*at)[1]) + code);
        }
        std::string text;
        for (const std::string& call : calls)
            text += call;
        std::snprintf(code, sizeof code, result < 10 ? "%d" : "0x%X", result);
        text += std::string("result ") + code + ", szBuffErr \"" + szBuffErr + '"';
        if (*szSockMsg != '\0') text += std::string(", szSockMsg \"") + szSockMsg + '"';
        return text + "; then on the card: " + card();
    }
};

} // namespace zvtest
