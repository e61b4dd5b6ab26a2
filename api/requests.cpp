// Entry points that make a request: command, signed file, base64 text.
#include <unistd.h>

#include <cstring>
#include <string>

#include "api/entry.h"
#include "api/guards.h"
#include "api/lines.h"
#include "api/request_files.h"
#include "api/state.h"
#include "card/detection.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr std::size_t DN_SIZE = 4096;

struct Request {
    const char* function; // name of the entry point, for the log
    const char* kind;
    char* pendingLabel;
    char* pin;
    char* keyId;
    const char* subject;
    bool discardPending;
};

// The PKCS#10 request, made by the command, in szBufferDatiOut.
int makeRequest(const Request& request) {
    const zv::RequestCall call = {zv::trimRight(request.pendingLabel), zv::trimRight(request.keyId),
                                  request.kind, request.subject, request.discardPending};
    int code = zv::guardRequest(call);
    if (code == 0) code = zv::guardSubject(call);
    if (code == 0)
        code = zv::runCommand("REQREN", {request.keyId, request.pin, "", request.pendingLabel, request.kind,
                                         request.discardPending ? "D" : "K"});
    if (code != 0) return zv::failCommand(code);
    scriviLog("OUTPUT DA MININFO:");
    scriviLog(zv::szBufferDatiOut);
    return 0;
}

int lostRequestFile() {
    return zv::fail("Funzione fopen() error!", ZV_UNSUPPORTED, "Primo File temporaneo non trovato");
}

// The crypto library's own session signs the file with the key in use.
int signRequest(const Request& request, const zv::RequestFile& file) {
    kvFinalize();
    int code = kvInitialize(zv::Libreria, zv::slot);
    if (code == 0) code = kvLogin(request.pin);
    if (code != 0) return zv::fail("Funzione DoInitialize() error!", code);
    char line[320] = "Richiesta firma con chiave CKA_ID: ";
    zv::appendText(line, request.keyId);
    scriviLog(line);
    const bool oursBefore = file.isOurs();
    code = oursBefore ? kvSignFile(request.keyId, "SHA256", zv::REQUEST_FILE, zv::SIGNED_FILE) : 0;
    if (code != 0) return zv::fail("Funzione kvSignFile() error!", code);
    if (!oursBefore || !file.isOurs()) {
        kvFinalize();
        return lostRequestFile();
    }
    scriviLog("Funzione 'kvSignFile()' completata con successo");
    code = kvFinalize();
    return code == 0 ? 0 : zv::fail("Funzione DoFinalize() error!", code);
}

int readBase64(char (&result)[ZV_REQUEST_SIZE]) {
    char from[sizeof zv::SIGNED_FILE], to[sizeof zv::BASE64_FILE];
    zv::copyText(from, zv::SIGNED_FILE);
    zv::copyText(to, zv::BASE64_FILE);
    if (const int code = kvFileToBase64(from, to, "e"))
        return zv::fail("Funzione kvFileToBase64() error!", code);
    const int descriptor = zv::openBase64();
    if (descriptor < 0)
        return zv::fail("Funzione fopen() error!", ZV_UNSUPPORTED, "File appoggio B64 non trovato");
    const std::size_t length = zv::readAll(descriptor, result, sizeof result - 1);
    ::close(descriptor);
    if (length == 0)
        return zv::fail("Funzione fread() error!", ZV_UNSUPPORTED, "Errore nella lettura file B64");
    return 0;
}

int createRequest(const Request& request, char* requestOut) {
    zv::clear(szBuffErr, zv::szBufferRichiesta, zv::szBufferDatiOut);
    char result[ZV_REQUEST_SIZE] = {};
    zv::traceEntry(request.function, "': INIZIO");
    zv::traceModule("Libreria pkcs#11 selezionata: ");
    char name[DN_SIZE];
    zv::copyText(name, request.subject);
    _RiempiDN(name, sizeof name);
    if (const int code = makeRequest(request)) return code;

    zv::RequestFile file;
    if (!file.create(zv::szBufferDatiOut)) return lostRequestFile();
    if (const int code = signRequest(request, file)) return code;
    if (const int code = readBase64(result)) return code;
    // The signed file is ours only if nobody took the request's name since.
    if (!file.isOurs()) return lostRequestFile();
    char line[128] = "OUTPUT dalla funzione '";
    zv::appendText(line, request.function);
    zv::appendText(line, "':");
    scriviLog(line);
    scriviLog(result);
    zv::copyText(requestOut, ZV_REQUEST_SIZE, result);
    if (requestOut != nullptr) requestOut[ZV_REQUEST_SIZE - 1] = '\0';
    zv::traceEntry(request.function, "' corretamente Eseguita");
    zv::removeRequestFiles();
    return 0;
}

int create(const char* function, const char* kind, char* requestOut, const char* pendingLabel, char* pin,
           char* keyId, const char* dn, bool keepFlag) {
    return zv::guarded(zv::commandWithoutMemory, [&] {
        std::string label = zv::orEmpty(pendingLabel);
        char none[] = "";
        const Request request = {function,
                                 kind,
                                 label.data(),
                                 pin != nullptr ? pin : none,
                                 keyId != nullptr ? keyId : none,
                                 zv::orEmpty(dn),
                                 keepFlag};
        return createRequest(request, requestOut);
    });
}

} // namespace

int rinnovo_Card_createCertRequestPRA(char* requestOut, const char* pendingLabel, char* pin, char* keyId,
                                      const char* dn, bool keepFlag) {
    return create("rinnovo_Card_createCertRequestPRA", "PRA", requestOut, pendingLabel, pin, keyId, dn,
                  keepFlag);
}

int rinnovo_Card_createCertRequestAUT(char* requestOut, const char* pendingLabel, char* pin, char* keyId,
                                      const char* dn, bool keepFlag) {
    const char* kind = std::strcmp(zv::orEmpty(keyId), "CNS0") == 0 ? "CNS" : "AUT";
    return create("rinnovo_Card_createCertRequestAUT", kind, requestOut, pendingLabel, pin, keyId, dn,
                  keepFlag);
}
