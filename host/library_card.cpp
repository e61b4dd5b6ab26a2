#include "host/library_card.h"

#include "host/card_session.h"
#include "host/front.h"
#include "host/library_text.h"
#include "routines/card.h"
#include "routines/diag.h"
#include "zvRenew.h"

namespace zvhost {
namespace {

// Only a reading tells the library where the modules are. One of a module whose path begins with a blank ends as soon as
// it has taken note of that: such a path stands for none. Every reading that ends so early leaves a failure in the log,
// and one that does not fail logs in.
void tell_module_folder(const std::string& folder) {
    char no_module[] = " " ZV_MODULE_PATH_MARK;
    char no_pin[] = "";
    char no_text[] = "";
    (void)rinnovo_Card_readCerts(no_module, no_pin, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, no_text, folder.c_str());
    scriviLog("Errore voluto: la lettura serve solo a indicare la cartella dei moduli");
}

} // namespace

void show_card_to_library(const OpenedCard& card) {
    tell_module_folder(library_way(card.place.module_path).folder);
    std::string reader = card.place.reader;
    bool touch_sign = false;
    forget_library_texts();
    if (const int code = CheckSmartCard(touch_sign, reader.data()); code != ZV_OK)
        throw library_stop("card-not-read", code, Advice{"repeat", {"unchanged-try-again", {}}});
    require_same_card(card);
}

} // namespace zvhost
