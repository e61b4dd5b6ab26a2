// MemorizzazioneCertificato: from the issued certificate's text to the certificate on the card.
#include "diag/failure.h"
#include "diag/log.h"
#include "install/modules.h"
#include "store/pending_pair.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace {

constexpr char STORE_TITLE[] = " .... MemorizzazioneCertificato FUN  .... ";
constexpr int EXPLANATION_SIZE = 512;

// Modules that do not let a key be relabelled.
constexpr const char* NOT_RELABELLED[] = {"incryptoki2", "bit4ipki", "bit4hipki", "cnspkcs11"};

int read_certificate(char* cert_text, datiCert& certificate) {
    char text[ZVC_CERT_TEXT_SIZE] = {};
    zv::Sentence explanation = {};
    writeBuff(cert_text, text);
    text[sizeof text - 1] = '\0';
    zv::trace(STORE_TITLE, "SplitCert");
    const int code = SplitCert(text, &certificate, explanation, EXPLANATION_SIZE);
    if (code == 0) return 0;
    zv::trace(explanation, CatLtoAHex1("Errore = ", code));
    return zv::Failure(STORE_TITLE)
        .step("SplitCert", code)
        .sentence("Errore nella scansione del certificato da memorizzare sulla smartcard");
}

} // namespace

int MemorizzazioneCertificato(void*, char* cert_text, char* pkcs11_library, char*) {
    zv::trace(STORE_TITLE, "I N I Z I O");
    datiCert certificate{};
    if (read_certificate(cert_text, certificate) != 0) return ZV_FAILED;

    zv::trace(STORE_TITLE, "CheckPendingKeys");
    if (const auto search = zv::find_pending_pair(true).search; search != zv::PairSearch::found)
        return zv::Failure(STORE_TITLE).step("CheckPendingKeys", static_cast<int>(search));

    zv::trace(STORE_TITLE, "ChangeValueObject");
    if (!zv::module_named(pkcs11_library, NOT_RELABELLED) && ChangeValueObject(nullptr, zv::certAlias) != 0)
        return zv::Failure(STORE_TITLE).step("ChangeValueObject", ZV_FAILED);

    zv::trace(STORE_TITLE, "InstallUserCertificate");
    if (InstallUserCertificate(nullptr, &certificate, certificate.derLength, zv::certAlias, pkcs11_library) !=
        0)
        return zv::Failure(STORE_TITLE).step("InstallUserCertificate", ZV_FAILED);
    zv::trace(STORE_TITLE, "F I N E");
    return 0;
}
