#include "install/issued_certificate.h"

#include "diag/failure.h"
#include "diag/report.h"
#include "install/certificate.h"
#include "install/label.h"
#include "store/pending_pair.h"
#include "store/renewal_state.h"
#include "util/numbers.h"
#include "zvCrypt.h"
#include "zvRenew.h"

namespace {

constexpr char ISSUED_TITLE[] = " .... MemorizzazioneCertificato FUN  .... ";
constexpr int EXPLANATION_SIZE = 512;

int read_issued(char* issued, datiCert& certificate) {
    char text[ZVC_CERT_TEXT_SIZE] = {};
    zv::Sentence explanation = {};
    writeBuff(issued, text);
    text[sizeof text - 1] = '\0';
    zv::trace(ISSUED_TITLE, "SplitCert");
    const int code = SplitCert(text, &certificate, explanation, EXPLANATION_SIZE);
    if (code == 0) return 0;
    zv::trace(explanation, zv::with_hex("Errore = ", code));
    return zv::Failure(ISSUED_TITLE)
        .step("SplitCert", code)
        .sentence("Errore nella scansione del certificato da memorizzare sulla smartcard");
}

} // namespace

int zv::install_issued(char* text, char* module_path) {
    trace(ISSUED_TITLE, "I N I Z I O");
    datiCert certificate{};
    if (read_issued(text, certificate) != 0) return ZV_FAILED;

    trace(ISSUED_TITLE, "CheckPendingKeys");
    if (const auto search = find_pending_pair(true).search; search != PairSearch::found)
        return Failure(ISSUED_TITLE).step("CheckPendingKeys", static_cast<int>(search));

    trace(ISSUED_TITLE, "ChangeValueObject");
    if (may_label_pair(module_path) && label_pair(certAlias) != 0)
        return Failure(ISSUED_TITLE).step("ChangeValueObject", ZV_FAILED);

    trace(ISSUED_TITLE, "InstallUserCertificate");
    if (install_user_certificate(der_of(&certificate, certificate.derLength), certAlias, module_path) != 0)
        return Failure(ISSUED_TITLE).step("InstallUserCertificate", ZV_FAILED);
    trace(ISSUED_TITLE, "F I N E");
    return 0;
}
