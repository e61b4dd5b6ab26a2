/*
 * A host in plain C. Built at a fixed address it has its own copies of the library's variables, and must see
 * there what the library writes. Its argument is a file for the log.
 */
#include "zvRenew.h"

#include <stdio.h>
#include <string.h>

char* getLogPath(void);

static int expect(int holds, const char* what) {
    if (!holds) fprintf(stderr, "not so: %s\n", what);
    return !holds;
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    snprintf(getLogPath(), 513, "%s", argv[1]);

    int failures = expect(errorMessages[0xA0][0] == '\0', "the table is empty before loadErrorCodes");
    loadErrorCodes();
    failures += expect(errorMessages[0xA0][0] != '\0', "the table is filled");

    /* Stopped before any card is touched: the pending label is empty. */
    char pin[] = "12345", certLabel[32] = "DS0", pendingLabel[32] = "", chain[] = "";
    int result = rinnovo_Card_saveCertPRA(pin, certLabel, pendingLabel, chain, true);
    failures += expect(result == ZV_NOT_SENT, "an installation without a pending label is stopped");
    failures += expect(strcmp(szBuffErr, "Errore nella mininfo") == 0, "szBuffErr holds the text");
    failures += expect(szSockMsg[0] == '\0' && force2048PraGen && !use2048Bit && !is1205SerialToken,
                       "the other variables hold their first values");
    return failures;
}
