#pragma once

#include "cli/option_list.h"

#include <string>
#include <vector>

namespace cli {

// The options of each command: what one is called, what it takes and what --help says of it stands beside its field.

// What every command takes.
struct CommonOptions {
    bool json = false;
    std::string module_dir; // empty: searched for

    void declare(OptionList& list) {
        list.flag("--json", json, "Print the result as JSON on standard output");
        list.text("--module-dir", "DIR", module_dir,
                  "Folder of the cards' PKCS#11 modules (else this program's own, then the system's)");
    }
};

// What a command takes that is about one card.
struct ReaderOptions : CommonOptions {
    std::string reader; // empty: the only reader that holds a known card

    void declare(OptionList& list) {
        CommonOptions::declare(list);
        list.text("--reader", "NAME", reader,
                  "Reader to use, its whole name (else the only one with a card)");
    }
};

// What a command takes that opens a card.
struct CardOptions : ReaderOptions {
    std::string pin_file; // empty: asked for at the terminal
    bool final_try = false;

    void declare(OptionList& list) {
        ReaderOptions::declare(list);
        list.text("--pin-file", "FILE", pin_file, "Read the PIN from a file (else it is asked for)");
        list.flag("--final-try", final_try, "Use the PIN even if it is the last try before the card locks");
    }
};

// How soon a certificate is due.
struct DueOptions {
    static constexpr int USUAL_DAYS = 90;
    int days = USUAL_DAYS;

    void declare(OptionList& list) {
        list.days("--days", days, "A certificate is due when it ends within so many days");
    }
};

struct StatusOptions : ReaderOptions, DueOptions {
    void declare(OptionList& list) {
        ReaderOptions::declare(list);
        DueOptions::declare(list);
    }
};

struct ListOptions : CardOptions, DueOptions {
    void declare(OptionList& list) {
        CardOptions::declare(list);
        DueOptions::declare(list);
    }
};

struct RequestOptions : CardOptions, DueOptions {
    Kind kind = Kind::signature;
    std::string out;         // empty: standard output
    std::string subject;     // empty: the certificate's
    std::string certificate; // identifier; empty: the one of that kind that ends last
    bool force = false;
    bool new_pair = false;

    void declare(OptionList& list) {
        list.kind("KIND", kind, "signature, authentication, or services (a services card's own)");
        list.text("--out", "FILE", out, "New file for the request (else standard output)");
        list.text("--subject", "NAME", subject, "Subject, as /C=IT/O=.../CN=... (else the certificate's)");
        list.text("--certificate", "ID", certificate,
                  "Identifier of the certificate to renew (else the one that ends last)");
        list.flag("--force", force, "Renew also what is not due");
        list.flag("--new-pair", new_pair,
                  "Discard the pair that waits on the card and make another (else it is used again)");
        DueOptions::declare(list);
        CardOptions::declare(list);
    }
};

// The reasons for which a certificate would be refused and can be taken all the same.
[[nodiscard]] const std::vector<std::string>& accepted_reasons();

struct InstallOptions : CardOptions {
    std::string certificate_file;
    std::string request_file; // empty: the pairs that wait on the card are asked
    std::string replace;      // identifier; empty: the one that signed the request, or the only one
    bool remove_old = false;
    std::string backup; // empty: a name made from the identifier and the serial number
    std::vector<std::string> accept;

    void declare(OptionList& list) {
        list.argument("CERTIFICATE", certificate_file, "The authority's file: PEM, DER or a PKCS#7 bundle");
        list.text("--request", "FILE", request_file,
                  "The request that it answers (else the pairs that wait on the card are compared)");
        list.text("--replace", "ID", replace,
                  "Identifier of the certificate it replaces (else the one that signed the request, or "
                  "the only one of its kind)");
        list.flag("--remove-old", remove_old, "Remove the old certificate and its keys from the card");
        list.text("--backup", "FILE", backup,
                  "New file for the old certificate (else IDENTIFIER-SERIAL.pem in this folder)");
        list.words("--accept", "REASON,...", accept, accepted_reasons(), "Take the certificate although: ");
        CardOptions::declare(list);
    }
};

} // namespace cli
