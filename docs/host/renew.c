/*
 * renew MODULES AUTHORITY IDENTIFIER [remove]: renews one certificate of the card in the first reader.
 *
 * MODULES is the folder of the cards' PKCS#11 modules, AUTHORITY a program that is run as "AUTHORITY REQUEST
 * CERTIFICATE" and writes the certificate for a request. The PIN is the first line of standard input. With "remove" the
 * old certificate and its keys go from the card. The same command again goes on where a failure left the card.
 */
#include <ctype.h>
#include <errno.h>
#include <pwd.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zvRenew.h>

#define REQUEST "request.b64"
#define CERTIFICATE "certificate.pem"

enum Kind { SIGNATURE, AUTHENTICATION, SERVICES, KINDS };

/* What a reading gives. Half a megabyte: not for the stack. */
static struct Card {
    char texts[KINDS][ZV_LIST_ENTRIES][ZV_LIST_ENTRY_SIZE];
    int pending[KINDS];
    char key[KINDS][ZV_KEY_ID_SIZE];
} card;

static char pin[ZV_PIN_MAX + 1];

/* The PIN is wiped however this program ends. */
static void wipe(void) {
    volatile char* rest = pin;
    for (size_t i = 0; i < sizeof pin; i++)
        rest[i] = '\0';
}

static void stop(const char* why) {
    fprintf(stderr, "%s\n", why);
    exit(1);
}

/* Says in whatever words there are why a call failed: its own, the request machinery's, the result's. */
static void check(const char* what, int result) {
    if (result == ZV_OK) return;
    const char* of_result = result >= 0 && result < ZV_MESSAGES ? errorMessages[result] : "";
    fprintf(stderr, "%s: %d\n%s\n%s\n%s\n", what, result, szBuffErr, szSockMsg, of_result);
    stop("What is on the card now, a new reading tells.");
}

/* The library logs to a folder that it does not make. */
static void make_log_folder(void) {
    const struct passwd* user = getpwuid(getuid());
    char folder[1024];
    int length = user ? snprintf(folder, sizeof folder, "%s/.trevallo", user->pw_dir) : -1;
    if (length < 0 || (size_t)length >= sizeof folder || (mkdir(folder, 0700) != 0 && errno != EEXIST))
        fprintf(stderr, "There will be no log.\n");
}

/* A PIN that the card would refuse for its form, or would get cut, costs a try: it is not sent. */
static void ask_pin(void) {
    char line[sizeof pin + 2];
    atexit(wipe);
    setvbuf(stdin, NULL, _IONBF, 0); /* leaves no copy behind */
    size_t length = fgets(line, sizeof line, stdin) ? strcspn(line, "\n") : 0;
    int bad = length == 0 || length > ZV_PIN_MAX || line[length - 1] == ' ';
    if (!bad) memcpy(pin, line, length);
    for (volatile char* rest = line; rest < line + sizeof line; rest++)
        *rest = '\0';
    if (bad) stop("A PIN has 1 to 31 characters and no blank at its end.");
}

/* Reads the card: also what requests and installing need right before, for they work on the card that was read last. */
static void read_card(const char* modules) {
    char* lists[KINDS][ZV_LIST_ENTRIES];
    memset(&card, 0, sizeof card); /* counts and records are appended */
    for (int kind = 0; kind < KINDS; kind++)
        for (int entry = 0; entry < ZV_LIST_ENTRIES; entry++)
            lists[kind][entry] = card.texts[kind][entry];
    szSockMsg[0] = '\0';
    check("Reading", rinnovo_Card_readCerts(NULL, pin, 0, lists[SERVICES], lists[SIGNATURE],
                                            lists[AUTHENTICATION], &card.pending[SERVICES],
                                            &card.pending[SIGNATURE], &card.pending[AUTHENTICATION],
                                            card.key[SIGNATURE], card.key[AUTHENTICATION], NULL, modules));
}

/* "#DD/MM/YYYY HH:MM:SS#" */
static int is_date(const char* text) {
    static const char form[] = "#00/00/0000 00:00:00#";
    for (size_t i = 0; form[i]; i++)
        if (form[i] == '0' ? !isdigit((unsigned char)text[i]) : text[i] != form[i]) return 0;
    return 1;
}

/*
 * Finds the identifier in a record: the field behind the two dates. Its length goes to *length. Fields may hold a "#" of
 * their own: of a record with more or fewer than five fields in front of the dates null is given.
 */
static const char* identifier_in(const char* record, size_t* length) {
    int fields = 0;
    for (const char* mark = strchr(record, '#'); mark; mark = strchr(mark + 1, '#')) {
        fields++;
        if (!is_date(mark) || !is_date(mark + 20)) continue;
        *length = strcspn(mark + 41, "#");
        return fields == 5 ? mark + 41 : NULL;
    }
    return NULL;
}

/* The record of the only certificate with that identifier; null when there is none, or more than one. */
static const char* find_record(enum Kind kind, const char* id) {
    const char* found = NULL;
    for (int i = 1; i < ZV_LIST_ENTRIES; i++) {
        size_t length = 0;
        const char* has = identifier_in(card.texts[kind][i], &length);
        if (!has || length != strlen(id) || strncmp(has, id, length) != 0) continue;
        if (found) return NULL;
        found = card.texts[kind][i];
    }
    return found;
}

/* The identifier of the pair that the new certificate is for. */
static const char* pair_for(enum Kind kind) {
    return kind == SERVICES ? ZV_OWN_PAIR : card.key[kind];
}

static void save(const char* text) {
    FILE* file = fopen(REQUEST, "w");
    if (!file || fputs(text, file) < 0 || fclose(file) != 0) stop("The request cannot be saved.");
}

/* Makes the request. A pair that waits already is used again: keepFlag stays false. */
static void request(enum Kind kind, const char* record, char* id) {
    static char text[ZV_REQUEST_SIZE];
    char subject[ZV_RECORD_NAME_SIZE] = "";
    size_t length = strcspn(record, "#");
    if (length >= sizeof subject - 1) stop("The subject came cut.");
    memcpy(subject, record, length);

    szSockMsg[0] = '\0'; /* else it may be about an earlier failure */
    printf("Leave the card in the reader: new keys can take a minute.\n");
    check("The request",
          kind == SIGNATURE
              ? rinnovo_Card_createCertRequestPRA(text, pair_for(kind), pin, id, subject, false)
              : rinnovo_Card_createCertRequestAUT(text, pair_for(kind), pin, id, subject, false));
    if (strlen(text) == ZV_REQUEST_SIZE - 1) stop("The request came cut.");
    save(text);
}

/* Hands the request over. No session is open meanwhile: each call opens and closes its own. */
static void ask_authority(const char* program, char* certificate, size_t size) {
    char command[1024];
    int length = snprintf(command, sizeof command, "\"%s\" " REQUEST " " CERTIFICATE, program);
    remove(CERTIFICATE); /* an answer from before is none */
    if (length < 0 || (size_t)length >= sizeof command || system(command) != 0)
        stop("The authority gave no certificate.");
    FILE* file = fopen(CERTIFICATE, "r");
    size_t got = file ? fread(certificate, 1, size, file) : 0;
    if (file) fclose(file);
    if (got == 0 || got == size) stop("The certificate cannot be read, or is too long.");
    certificate[got] = '\0';
}

static void install(enum Kind kind, const char* id, char* certificate, bool keep_old) {
    char old[ZV_LABEL_SIZE] = "", pair[ZV_LABEL_SIZE] = "";
    strncat(old, id, ZV_ID_MAX);
    strncat(pair, pair_for(kind), ZV_ID_MAX);
    szSockMsg[0] = '\0';
    check("Installing", kind == SIGNATURE ? rinnovo_Card_saveCertPRA(pin, old, pair, certificate, keep_old)
                                          : rinnovo_Card_saveCertAUT(pin, old, pair, certificate, keep_old));
}

static enum Kind kind_of(const char* id) {
    if (strcmp(id, ZV_OWN_PAIR) == 0) return SERVICES;
    return strncmp(id, ZV_SIGNATURE_SERIES, strlen(ZV_SIGNATURE_SERIES)) == 0 ? SIGNATURE : AUTHENTICATION;
}

int main(int argc, char** argv) {
    static char certificate[ZV_CERT_TEXT_MAX + 1];
    char pair[ZV_KEY_ID_SIZE] = "";
    if (argc < 4 || argc > 5 || (argc == 5 && strcmp(argv[4], "remove") != 0)) return 2;
    if (strlen(argv[1]) > ZV_MODULE_DIR_MAX || strlen(argv[3]) > ZV_ID_MAX) return 2;
    const char *modules = argv[1], *authority = argv[2];
    char* id = argv[3];
    const enum Kind kind = kind_of(id);
    const bool keep_old = argc == 4;

    make_log_folder();
    loadErrorCodes(); /* or the texts of PKCS#11 results stay empty */
    ask_pin();
    read_card(modules); /* proves the PIN: one that is refused ends here, and costs one try */

    const char* record = find_record(kind, id);
    if (!record) stop("The card does not hold exactly one certificate of that identifier.");
    strncat(pair, pair_for(kind), ZV_ID_MAX);
    if (!strpbrk(pair, ZV_RENEWED_DIGITS) && kind != SERVICES) stop("No identifier is free for new keys.");
    printf("Renewing %s with the keys %s%s\n", id, pair, card.pending[kind] ? ", which wait already" : "");

    request(kind, record, id);
    ask_authority(authority, certificate, sizeof certificate);

    read_card(modules); /* much may have happened since: is it the same card, and does the pair still wait? */
    if (!card.pending[kind] || strcmp(pair, pair_for(kind)) != 0)
        stop("The pair does not wait on this card.");
    install(kind, id, certificate, keep_old);

    read_card(modules);
    if (card.pending[kind] || !find_record(kind, pair)) stop("The certificate is not on the card.");
    if (!keep_old && kind != SERVICES && find_record(kind, id))
        stop("The old certificate is still on the card.");
    printf("%s is on the card with its keys%s\n", pair, keep_old ? "" : "; the old certificate is not");
    return 0;
}
