#include "diag/messages.h"

#include "util/text.h"
#include "zvRenew.h"

#include <iterator>

char errorMessages[ZV_MESSAGES][ZV_MESSAGE_SIZE];

namespace {

struct Message {
    CK_RV code;
    const char* text;
};

// The wording is part of the interface, its odd spellings too.
constexpr Message MESSAGES[] = {
    {CKR_OK, "Operazione completata con successo"},
    {CKR_CANCEL, "CKR_CANCEL"},
    {CKR_HOST_MEMORY,
     "Il sistema non ha memoria sufficiente per eseguire le operazioni crittografiche richieste"},
    {CKR_SLOT_ID_INVALID,
     "Identificativo del lettore specificato invalido. Controllare il file di configurazione molvastra.ini"},
    {CKR_GENERAL_ERROR, "Errore non recuperabile. Riavviare la stazione"},
    {CKR_FUNCTION_FAILED, "Funzione richiesta non eseguibile. Riavviare il programma molvastra.exe"},
    {CKR_ARGUMENTS_BAD, "Schedulazione fallita. Argomenti non corretti"},
    {CKR_NO_EVENT, "CKR_NO_EVENT"},
    {CKR_NEED_TO_CREATE_THREADS, "Impossibile attivare ulteriori sessioni con la libreria crittografica"},
    {CKR_CANT_LOCK, "Impossibile attivare la libreria crittografica nella modalita' di lock richiesta"},
    {CKR_ATTRIBUTE_READ_ONLY, "Impossibile modificare l'attributo (read-only)"},
    {CKR_ATTRIBUTE_SENSITIVE, "Impossibile estrarre il valore dell'attributo (sensitive)"},
    {CKR_ATTRIBUTE_TYPE_INVALID, "Si e' specificato un tipo di attributo invalido in un template"},
    {CKR_ATTRIBUTE_VALUE_INVALID, "Si e' specificato un valore di attributo invalido in un template"},
    {CKR_DATA_INVALID, "CKR_DATA_INVALID"},
    {CKR_DATA_LEN_RANGE, "I dati di input all'operazione crittografica sono errati"},
    {CKR_DEVICE_ERROR, "Sono occorsi dei problemi nella connessione al lettore o alla carta. Controllare il "
                       "file molvastra.ini"},
    {CKR_DEVICE_MEMORY,
     "La smartcard non ha memoria sufficiente per completare l'operazione. Sostituire la smartcard"},
    {CKR_DEVICE_REMOVED, "Smartcard rimossa durante l'esecuzione dell'operazione crittografica"},
    {CKR_ENCRYPTED_DATA_INVALID, "CKR_ENCRYPTED_DATA_INVALID"},
    {CKR_ENCRYPTED_DATA_LEN_RANGE, "CKR_ENCRYPTED_DATA_LEN_RANGE"},
    {CKR_FUNCTION_CANCELED, "CKR_FUNCTION_CANCELED"},
    {CKR_FUNCTION_NOT_PARALLEL, "CKR_FUNCTION_NOT_PARALLEL"},
    {CKR_FUNCTION_NOT_SUPPORTED, "Funzione richiesta non supportata dalla libreria crittografica"},
    {CKR_KEY_HANDLE_INVALID, "L'handle selezionato non e' una chiave valida"},
    {CKR_KEY_SIZE_RANGE, "Operazione crittografica non completabile. La libreria crittografica non supporta "
                         "la dimensione della chiave fornita"},
    {CKR_KEY_TYPE_INCONSISTENT,
     "La chiave specificata non e' del tipo corretto per l'operazione crittografica richiesta"},
    {CKR_KEY_NOT_NEEDED, "CKR_KEY_NOT_NEEDED"},
    {CKR_KEY_CHANGED, "CKR_KEY_CHANGED"},
    {CKR_KEY_NEEDED, "CKR_KEY_NEEDED"},
    {CKR_KEY_INDIGESTIBLE, "CKR_KEY_INDIGESTIBLE"},
    {CKR_KEY_FUNCTION_NOT_PERMITTED,
     "La chiave non puo' essere utilizzata per la funzione crittografica desiderata"},
    {CKR_KEY_NOT_WRAPPABLE, "La libreria crittografica non riesce da estrarre la chiave dalla smartcard"},
    {CKR_KEY_UNEXTRACTABLE, "La chiave selezionata non puo' essere estratta dalla smartcard"},
    {CKR_MECHANISM_INVALID, "Meccanismo specificato nella funzione crittografica invalido"},
    {CKR_MECHANISM_PARAM_INVALID,
     "Al meccanismo specificato nella funzione crittografica sono stati passati dei parametri invalidi"},
    {CKR_OBJECT_HANDLE_INVALID, "Il riferimento dell'oggetto specificato r' invalido"},
    {CKR_OPERATION_ACTIVE, "CKR_OPERATION_ACTIVE"},
    {CKR_OPERATION_NOT_INITIALIZED, "Operazione non inizializzata correttamente"},
    {CKR_PIN_INCORRECT, "Pin errato"},
    {CKR_PIN_INVALID, "Il pin contiene dei caratteri invalidi"},
    {CKR_PIN_LEN_RANGE, "Lunghezza pin errata"},
    {CKR_PIN_EXPIRED,
     "Il pin specificato e' spirato e non puo' essere utilizzato per autenticarsi alla smartcard"},
    {CKR_PIN_LOCKED, "Il pin specificato e' bloccato e non puo' essere utilizzato. Sbloccare il pin con il "
                     "programma di unblock pin"},
    {CKR_SESSION_CLOSED, "La sessione e' stata chiusa durante l'esecuzione dell'operazione crittografica"},
    {CKR_SESSION_COUNT,
     "La smartcard ha raggiunto il numero massimo di sessioni aperte. Riavviare la stazione RAO"},
    {CKR_SESSION_HANDLE_INVALID,
     "Identificativo di sessione invalido. Non rimuovere la smartcard dal lettore durante le operazioni "
     "crittografiche. Controllare il file molvastra.ini"},
    {CKR_SESSION_PARALLEL_NOT_SUPPORTED, "CKR_SESSION_PARALLEL_NOT_SUPPORTED"},
    {CKR_SESSION_READ_ONLY, "La sessione specificata non riesce ad eseguire l'operazione crittografica "
                            "richiesta in quanto trattasi di sessione a sola lettura"},
    {CKR_SESSION_EXISTS, "Impossibile inizializzare la smartcard in quanto esiste una sessione in corso"},
    {CKR_SESSION_READ_ONLY_EXISTS,
     "Impossibile completare il login SO in quanto esiste una sessione read-only"},
    {CKR_SESSION_READ_WRITE_SO_EXISTS,
     "Impossibile aprire una sessione read-only in quanto esiste una sessione SO read/write"},
    {CKR_SIGNATURE_INVALID, "CKR_SIGNATURE_INVALID"},
    {CKR_SIGNATURE_LEN_RANGE, "CKR_SIGNATURE_LEN_RANGE"},
    {CKR_TEMPLATE_INCOMPLETE,
     "Impossibile creare l'oggetto specificato a causa di un errore nella definizione del template"},
    {CKR_TEMPLATE_INCONSISTENT, "Impossibile creare l'oggetto specificato a causa di un conflitto degli "
                                "attributi definiti nel template"},
    {CKR_TOKEN_NOT_PRESENT,
     "Nessuna smartcard inserita nel lettore. Inserire una smartcard nel lettore prima di eseguire "
     "l'operazione. Nel caso l'errore perdurasse controllare il file molvastra.ini"},
    {CKR_TOKEN_NOT_RECOGNIZED, "La libreria crittografica e/o il lettore non riconoscono la smartcard "
                               "inserita nel lettore. Provare a sostituire la smartcard. Nel caso l'errore "
                               "perdurasse controllare il file molvastra.ini e/o l'efficienza del lettore"},
    {CKR_TOKEN_WRITE_PROTECTED,
     "Non e' possibile scrivere sulla smartcard. L'operazione richiesta non puo' essere completata"},
    {CKR_UNWRAPPING_KEY_HANDLE_INVALID, "CKR_UNWRAPPING_KEY_HANDLE_INVALID"},
    {CKR_UNWRAPPING_KEY_SIZE_RANGE, "CKR_UNWRAPPING_KEY_SIZE_RANGE"},
    {CKR_UNWRAPPING_KEY_TYPE_INCONSISTENT, "CKR_UNWRAPPING_KEY_TYPE_INCONSISTENT"},
    {CKR_USER_ALREADY_LOGGED_IN, "La smartcard ha gia' un login in corso. Ripetere l'operazione"},
    {CKR_USER_NOT_LOGGED_IN, "La smartcard non ha un login in corso. Ripetere l'operazione"},
    {CKR_USER_PIN_NOT_INITIALIZED, "Pin utente non inizializzato. Impossibile collegarsi alla smartcard"},
    {CKR_USER_TYPE_INVALID, "Tipo utente invalido"},
    {CKR_USER_ANOTHER_ALREADY_LOGGED_IN, "Altro utente gia' collegato alla smartcard"},
    {CKR_USER_TOO_MANY_TYPES, "Troppi tentativi di accesso alla smartcard con diversi tipi di utenti"},
    {CKR_WRAPPED_KEY_INVALID, "CKR_WRAPPED_KEY_INVALID"},
    {CKR_WRAPPED_KEY_LEN_RANGE, "CKR_WRAPPED_KEY_LEN_RANGE"},
    {CKR_WRAPPING_KEY_HANDLE_INVALID, "CKR_WRAPPING_KEY_HANDLE_INVALID"},
    {CKR_WRAPPING_KEY_SIZE_RANGE, "CKR_WRAPPING_KEY_SIZE_RANGE"},
    {CKR_WRAPPING_KEY_TYPE_INCONSISTENT, "CKR_WRAPPING_KEY_TYPE_INCONSISTENT"},
    {CKR_RANDOM_SEED_NOT_SUPPORTED, "CKR_RANDOM_SEED_NOT_SUPPORTED"},
    {CKR_RANDOM_NO_RNG, "CKR_RANDOM_NO_RNG"},
    {CKR_BUFFER_TOO_SMALL,
     "Il risultato dell'operazione e' troppo grande per il buffer fornito. Ripetere l'operazione"},
    {CKR_SAVED_STATE_INVALID, "CKR_SAVED_STATE_INVALID"},
    {CKR_INFORMATION_SENSITIVE, "CKR_INFORMATION_SENSITIVE"},
    {CKR_STATE_UNSAVEABLE, "CKR_STATE_UNSAVEABLE"},
    {CKR_CRYPTOKI_NOT_INITIALIZED, "Libreria crittografica non inizializzata. Ripetere l'operazione"},
    {CKR_CRYPTOKI_ALREADY_INITIALIZED, "Libreria crittografica non finalizzata. Ripetere l'operazione"},
    {CKR_MUTEX_BAD, "CKR_MUTEX_BAD"},
    {CKR_MUTEX_NOT_LOCKED, "CKR_MUTEX_NOT_LOCKED"},
};

} // namespace

namespace zv {

void load_messages() {
    for (const Message& message : MESSAGES)
        copy_text(errorMessages[message.code], message.text);
}

const char* error_message(CK_RV code) {
    return code < std::size(errorMessages) ? errorMessages[code] : "";
}

} // namespace zv
