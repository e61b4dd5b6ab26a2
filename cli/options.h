#pragma once

#include "cli/engine.h"
#include "cli/option_list.h"
#include "host/choice.h"
#include "host/wishes.h"

#include <string>

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
    bool open = false;

    void declare(OptionList& list) {
        declare_json(list, json, language);
        declare_days(list, days);
        list.flag("--enable", enable, "Have this run by itself from now on (else only this once)");
        list.flag("--disable", disable, "Have it run by itself no longer");
        list.flag("--open", open,
                  "Offer to open the window, and wait until that is answered, an hour at most");
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

} // namespace cli
