#pragma once

#include "cli/engine.h"
#include "cli/option_list.h"
#include "host/choice.h"
#include "host/remove.h"
#include "host/renew.h"
#include "host/wishes.h"

#include <string>
#include <vector>

namespace cli {

// The options of each command: what one is called, what it takes and what --help says of it stands beside its field.

inline void declare_json(OptionList& list, bool& json, std::string& language) {
    list.flag("--json", json, "Print the result as JSON on standard output");
    list.language("--lang", language);
}

// What every command takes that has to do with cards.
struct CommonOptions {
    bool json = false;
    std::string language; // what is spoken was looked up before these texts were made
    CardChoice choice;

    void declare(OptionList& list) {
        declare_json(list, json, language);
        list.text("--module-dir", "DIR", choice.module_dir,
                  "Folder of the cards' PKCS#11 modules (else this program's own, then the system's)");
    }
};

struct DoctorOptions : CommonOptions {
    std::string bundle; // empty: none
    bool with_names = false;

    void declare(OptionList& list) {
        CommonOptions::declare(list);
        list.text("--bundle", "FILE", bundle,
                  "New file for a help desk: what was found, the configuration, the log; plain text");
        list.flag("--with-names", with_names,
                  "Leave names and tax codes in that file (else they are masked)");
    }
};

// What a command takes that is about one card.
struct ReaderOptions : CommonOptions {
    void declare(OptionList& list) {
        CommonOptions::declare(list);
        list.text("--reader", "NAME", choice.reader,
                  "Reader to use, its whole name (else the only one with a card)");
        list.wait("--wait", choice.wait,
                  "Wait for the reader and the card; --wait=SECONDS: for so long at most");
    }
};

// What a command takes that opens a card.
struct CardOptions : ReaderOptions {
    // Where the PIN comes from; asked for at the terminal without any of them.
    std::string pin_file;
    int pin_fd = -1;
    bool pinentry = false;
    bool final_try = false;

    void declare(OptionList& list) {
        ReaderOptions::declare(list);
        list.text("--pin-file", "FILE", pin_file, "Read the PIN from a file (else it is asked for)");
        list.descriptor("--pin-fd", pin_fd, "Read the PIN from an open descriptor, one line");
        list.flag("--pinentry", pinentry, "Have the program pinentry ask for the PIN");
        list.flag("--final-try", final_try, "Use the PIN even if it is the last try before the card locks");
    }
};

// How soon a certificate is due.
inline void declare_days(OptionList& list, int& days) {
    list.days("--days", days, "A certificate is due when it ends within so many days");
}

struct StatusOptions : ReaderOptions {
    int days = USUAL_DAYS;

    void declare(OptionList& list) {
        ReaderOptions::declare(list);
        declare_days(list, days);
    }
};

struct RemindOptions {
    bool json = false;
    std::string language;
    int days = USUAL_DAYS;
    bool enable = false;
    bool disable = false;

    void declare(OptionList& list) {
        declare_json(list, json, language);
        declare_days(list, days);
        list.flag("--enable", enable, "Have this run by itself from now on (else only this once)");
        list.flag("--disable", disable, "Have it run by itself no longer");
    }
};

struct ListOptions : CardOptions {
    int days = USUAL_DAYS;

    void declare(OptionList& list) {
        CardOptions::declare(list);
        declare_days(list, days);
    }
};

// What a command takes that changes a card.
struct ChangingOptions : CardOptions {
    bool dry_run = false;
    std::string apply_if; // fingerprint of a plan; empty: any

    void declare(OptionList& list) {
        CardOptions::declare(list);
        list.flag("--dry-run", dry_run,
                  "Print what would be done to the card, and its fingerprint; do nothing");
        list.text("--apply-if", "FINGERPRINT", apply_if,
                  "Refuse when the card, or what would be done to it, is not as --dry-run printed it");
    }
};

struct RequestOptions : ChangingOptions {
    RequestWishes wishes;

    void declare(OptionList& list) {
        list.kind("KIND", wishes.kind, "signature, authentication, or services (a services card's own)");
        list.text("--out", "FILE", wishes.out, "New file for the request (else standard output)");
        list.text("--subject", "NAME", wishes.subject,
                  "Subject, as /C=IT/O=.../CN=... (else the certificate's)");
        list.text("--certificate", "ID", wishes.certificate,
                  "Identifier of the certificate to renew (else the one that ends last)");
        list.flag("--force", wishes.force, "Renew also what is not due");
        list.flag("--new-pair", wishes.new_pair,
                  "Discard the pair that waits on the card and make another (else it is used again)");
        declare_days(list, wishes.days);
        ChangingOptions::declare(list);
    }
};

// A renewal that is only tried, on a twin of the card.
struct RehearseOptions : ReaderOptions {
    Kind kind = Kind::signature;
    std::string certificate; // identifier; empty: the one of that kind that ends last
    int days = USUAL_DAYS;
    bool force = false;
    bool remove_old = false;

    void declare(OptionList& list) {
        list.kind("KIND", kind, "signature, authentication, or services (a services card's own)");
        list.text("--certificate", "ID", certificate,
                  "Identifier of the certificate to renew (else the one that ends last)");
        list.flag("--force", force, "Renew also what is not due");
        list.flag("--remove-old", remove_old, "Remove the old certificate and its keys, too");
        declare_days(list, days);
        ReaderOptions::declare(list);
    }
};

struct InstallOptions : ChangingOptions {
    InstallWishes wishes;

    void declare(OptionList& list) {
        list.argument("CERTIFICATE", wishes.certificate_file,
                      "The authority's file: PEM, DER or a PKCS#7 bundle");
        list.text("--request", "FILE", wishes.request_file,
                  "The request that it answers (else the pairs that wait on the card are compared)");
        list.text("--replace", "ID", wishes.replace,
                  "Identifier of the certificate it replaces (else the one that signed the request, or "
                  "the only one of its kind)");
        list.flag("--remove-old", wishes.remove_old, "Remove the old certificate and its keys from the card");
        list.text("--backup", "FILE", wishes.backup,
                  "New file for the old certificate (else IDENTIFIER-SERIAL.pem in this folder)");
        list.words("--accept", "REASON,...", wishes.accept, accepted_reasons(),
                   "Take the certificate although: ");
        ChangingOptions::declare(list);
    }
};

struct RemoveOptions : ChangingOptions {
    RemovalWishes wishes;

    void declare(OptionList& list) {
        list.argument("ID", wishes.id, "Identifier of what goes, as zvrenew list shows it, whole");
        list.flag("--last", wishes.last, "Remove also the certificate of its kind that ends last");
        declare_backup(list);
        ChangingOptions::declare(list);
    }

  protected:
    void declare_backup(OptionList& list) {
        list.text("--backup", "FILE", wishes.backup,
                  "New file for what is public of it (else IDENTIFIER-....pem in this folder)");
    }
};

struct DiscardOptions : RemoveOptions {
    void declare(OptionList& list) {
        list.argument("ID", wishes.id, "Identifier of the pair, as zvrenew pending shows it, whole");
        declare_backup(list);
        ChangingOptions::declare(list);
    }
};

struct RenewOptions : ChangingOptions {
    RenewalWishes wishes;
    std::string from;       // file of the authority's certificate
    std::string ca_command; // that asks the authority

    void declare(OptionList& list) {
        list.kind("KIND", wishes.request.kind,
                  "signature, authentication, or services (a services card's own)");
        list.text("--to", "FILE", wishes.request.out,
                  "File for the request (else request-KIND.b64 in this folder)");
        list.text("--from", "FILE", from, "File in which the authority's certificate is, or will be");
        list.text(
            "--ca-command", "COMMAND", ca_command,
            "Command that gets the request on standard input and prints the certificate, or ends with 75 "
            "when there is none yet");
        list.text("--subject", "NAME", wishes.request.subject,
                  "Subject, as /C=IT/O=.../CN=... (else the certificate's)");
        list.text("--certificate", "ID", wishes.request.certificate,
                  "Identifier of the certificate to renew (else the one that ends last)");
        list.flag("--force", wishes.request.force, "Renew also what is not due");
        list.flag("--remove-old", wishes.remove_old,
                  "Remove the old certificate and its keys, once the new one is proved");
        list.text("--replace", "ID", wishes.replace,
                  "Identifier of the certificate that goes (else the one that the request was signed with)");
        list.text("--backup", "FILE", wishes.backup,
                  "New file for the old certificate (else IDENTIFIER-SERIAL.pem in this folder)");
        list.words("--accept", "REASON,...", wishes.accept, accepted_reasons(),
                   "Take the certificate although: ");
        declare_days(list, wishes.request.days);
        ChangingOptions::declare(list);
    }
    // Refuses options that leave the authority out. @throws Error
    void check() const;
    [[nodiscard]] RenewalWishes renewal() const;
    // File in which the command's answer is kept.
    [[nodiscard]] std::string answer() const;
    // Removes the files that were not asked for by name.
    void tidy() const;

  private:
    [[nodiscard]] std::string request_file() const;
};

} // namespace cli
