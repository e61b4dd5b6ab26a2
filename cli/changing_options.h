#pragma once

#include "cli/options.h"
#include "host/remove.h"
#include "host/renew.h"
#include "host/wishes.h"

#include <string>
#include <vector>

namespace cli {

// The options of the commands that change a card, or try to. What several take has one declaration.

inline void declare_kind(OptionList& list, Kind& kind) {
    list.kind("KIND", kind, "signature, authentication, or services (a services card's own)");
}

inline void declare_subject(OptionList& list, std::string& subject) {
    list.text("--subject", "NAME", subject, "Subject, as /C=IT/O=.../CN=... (else the certificate's)");
}

inline void declare_certificate(OptionList& list, std::string& id) {
    list.text("--certificate", "ID", id,
              "Identifier of the certificate to renew (else the one that ends last)");
}

inline void declare_force(OptionList& list, bool& force) {
    list.flag("--force", force, "Renew also what is not due");
}

inline void declare_backup_of_old(OptionList& list, std::string& file) {
    list.text("--backup", "FILE", file,
              "New file for the old certificate (else IDENTIFIER-SERIAL.pem in this folder)");
}

inline void declare_accept(OptionList& list, std::vector<std::string>& reasons) {
    list.words("--accept", "REASON,...", reasons, accepted_reasons(), "Take the certificate although: ");
}

struct RequestOptions : ChangingOptions {
    RequestWishes wishes;

    void declare(OptionList& list) {
        declare_kind(list, wishes.kind);
        list.text("--out", "FILE", wishes.out, "New file for the request (else standard output)");
        declare_subject(list, wishes.subject);
        declare_certificate(list, wishes.certificate);
        declare_force(list, wishes.force);
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
        declare_kind(list, kind);
        declare_certificate(list, certificate);
        declare_force(list, force);
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
        declare_backup_of_old(list, wishes.backup);
        declare_accept(list, wishes.accept);
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
        declare_kind(list, wishes.request.kind);
        list.text("--to", "FILE", wishes.request.out,
                  "File for the request (else request-KIND.b64 in this folder)");
        list.text("--from", "FILE", from, "File in which the authority's certificate is, or will be");
        list.text(
            "--ca-command", "COMMAND", ca_command,
            "Command that gets the request on standard input and prints the certificate, or ends with 75 "
            "when there is none yet");
        declare_subject(list, wishes.request.subject);
        declare_certificate(list, wishes.request.certificate);
        declare_force(list, wishes.request.force);
        list.flag("--remove-old", wishes.remove_old,
                  "Remove the old certificate and its keys, once the new one is proved");
        list.text("--replace", "ID", wishes.replace,
                  "Identifier of the certificate that goes (else the one that the request was signed with)");
        declare_backup_of_old(list, wishes.backup);
        declare_accept(list, wishes.accept);
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
