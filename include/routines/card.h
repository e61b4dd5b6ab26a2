/** Card, module and session. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_CARD_H
#define ZV_ROUTINES_CARD_H

#include "pkcs11.h"
#include "zvRenew.h"

extern "C" {

/**
 * Finds the reader, the module that serves its card, the slot, the kind of card and its serial number.
 *
 * What it finds serves every later call: readings, requests and installing. The module follows from the card's
 * ATR (a table given to set_ATRini_path is asked first); the serial number is read in a session of the crypto
 * library's own, without a login.
 *
 * @param[out] isTouchSign  set to true for a touch-sign card, never to false
 * @param[in]  reader       reader to use, listed or not, ZV_READER_MAX characters kept; null: the first of the list
 * @return 0, also when there is neither a given nor a listed reader (the module's path stays empty); 100
 *         unknown card, or a serial number that begins "1201"; -1 no slot of the module belongs to the
 *         reader, or the module cannot be used; a code of the crypto library
 * After a failure: the module's path is empty, but set when finding the slot or a later step failed. When the
 * card's data cannot be read, the crypto library's session stays open until DoFinalize. A reader list that
 * fails and an unknown card have no log line of their own.
 * Standard: PC/SC (readers), ISO/IEC 7816-3 (ATR), PKCS#11 (C_GetSlotInfo, C_GetTokenInfo).
 */
ZV_API int CheckSmartCard(bool& isTouchSign, char* reader);
/**
 * Asks a module which of its slots belongs to a reader, apart from the open session.
 *
 * Loads, initialises, finalises and unloads the module. A module that is initialised already is finalised
 * first: its sessions in this process are lost.
 *
 * @param[in] readerName  reader; the first slot with a token is taken whose description (blanks at its end
 *                        removed; ZV_DESCRIPTION_MAX characters where it fills its field) is part of this
 *                        name. Null is empty, which no slot belongs to
 * @param[in] libPath     path of the module; null and empty never load
 * @return the slot's identifier (low 32 bits); 0xFFFFFFFF none, or the module cannot be used
 * After a failure: the module is unloaded again; only a failed load is logged.
 * Standard: PKCS#11 (C_GetSlotList, C_GetSlotInfo).
 */
ZV_API unsigned int getSlot(char* readerName, char* libPath);
/**
 * Loads a module, opens a read/write session on a slot identifier and logs the user in.
 *
 * Closes nothing first: what is open is to be closed with finalizza before. A module that is initialised
 * already and a user who is logged in already count as success.
 *
 * @param[in] slot     slot identifier as the module knows it
 * @param[in] pin      user PIN; null and empty are sent as an empty one, which costs a try
 * @param[in] libPath  path of the module; null, empty and a blank in front stand for none
 * @return 0; all ones no module, or one without a function list; else the PKCS#11 result
 * After a failure: what was opened stays open until finalizza; szSockMsg is untouched. A wrong PIN has cost
 * one try.
 * Standard: PKCS#11 (C_Initialize, C_GetSlotList, C_OpenSession, C_Login).
 */
ZV_API CK_RV __Initialize(int slot, char* pin, char* libPath);
/**
 * Closes what is open, loads a module, opens a read/write session on a slot index and logs the user in.
 *
 * The identifier found for an index is kept for the process and not looked up again, unless it is 0;
 * miExecCmd puts that of its own session there. While it runs, an index that leads to another slot than that
 * session's counts as one that is not in the list: no session is opened, nothing kept. A module that is
 * initialised already and a user who is logged in already are failures here.
 *
 * @param[in] libPath    path of the module; null and empty never load
 * @param[in] pin        user PIN; null and empty open the session without a login
 * @param[in] slotIndex  0 to 7: place in the module's list of all slots, with or without a card
 * @param[in] reserved   not read
 * @param[in] userType   CKU_USER
 * @return 0; 2 wrong PIN (CKR_PIN_INCORRECT): one try is spent, the failure is not logged, szSockMsg stays; 1
 *         otherwise
 * After a failure: what was opened stays open until finalizza. After 1 the text for the user is in szSockMsg
 * (512 bytes) and in the log; in szSockMsg alone for a module without C_GetFunctionList.
 * Standard: PKCS#11 (C_Initialize, C_GetSlotList, C_OpenSession, C_Login).
 */
ZV_API int inizializza(char* libPath, char* pin, unsigned int slotIndex, void* reserved, int userType);
/**
 * Logs out, closes the session, finalises the module for the whole process and unloads it.
 *
 * Results are not looked at: nothing is open afterwards. Harmless when nothing was.
 * Standard: PKCS#11 (C_Logout, C_CloseSession, C_Finalize).
 */
ZV_API void finalizza(void);

} // extern "C"

#endif
