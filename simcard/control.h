#ifndef ZVSIMCARD_CONTROL_H
#define ZVSIMCARD_CONTROL_H

// The control of the simulated card: what a test does to the PKCS#11 calls of its own process. The functions
// are exported by the module (libzvsimcard.so) beside the PKCS#11 ones and are found with dlsym.
//
// Conventions:
//  1. The control belongs to one loaded module file. dlopen of the same path gives the same control, whoever
//     loaded it first; a copy of the file under another name has its own. It lives as long as the file is
//     loaded: a test that sets rules for a program which loads and unloads the module keeps it loaded with a
//     dlopen of its own.
//  2. It is there before C_Initialize and survives C_Finalize.
//  3. Slots are the module's own numbers, 0 to 9. Functions are named as in the standard ("C_Login").
//  4. The functions may be called from any thread; each waits for the PKCS#11 call under way.
//
// A program is controlled through its environment instead, read when the module is first used:
//
//   ZVSIMCARD_HOME     the folder of cards
//   ZVSIMCARD_SOFTHSM  SoftHSM's module, instead of the one found when this was built
//   ZVSIMCARD_RULES    rules as for zvsimcard_add_rules; they count over the whole run of the program, also
//                      when it unloads the module in between. When they are not understood C_Initialize
//                      answers CKR_GENERAL_ERROR and the standard error says which
//   ZVSIMCARD_TRACE    a file to which every call is added as it ends, a line each as in zvsimcard_recorded
//   ZVSIMCARD_KEYS     a file of ready-made key pairs as for zvsimcard_use_keys
//
// All of them are ignored in a process with the rights of another user than the one who started it.

#ifdef __cplusplus
extern "C" {
#endif

// Adds rules for the calls to come.
//
// @param[in] rules  NUL-terminated; rules are separated by ';' or a line end. Each is FUNCTION:WHEN:DEED or
//                   FUNCTION:WHEN:DEED:VALUE.
//                   FUNCTION is a function's name, or '*' for any.
//                   WHEN is "n", the n-th such call from now on, counted from 1; "n+", that and all later
//                   ones; or '*', every one.
//                   DEED and VALUE are one of
//                     answer:CODE         the call is not done; its result is CODE (decimal or 0x...)
//                     do-and-answer:CODE  the call is done; its result is CODE all the same
//                     absurd:KIND         the call is done; if it succeeded its answer is absurd: "count"
//                                         (counts of 2147483647), "brief" (the last attribute of a template is
//                                         empty, other lengths are one less), "length" (lengths 4096 past the caller's
//                                         buffers), "unavailable" (lengths and counts
//                                         CK_UNAVAILABLE_INFORMATION), "text" (texts and attributes fill
//                                         their room with 'X', without an end). Nothing is written past the
//                                         caller's buffers
//                     take-out[:SLOT]     the card is taken out before the call: for every process, until it
//                                         is put back. Without SLOT it is the card that the call goes to, or
//                                         slot 0
//                     put-back[:SLOT]     the card is put back before the call
//                     delay:MICROSECONDS  the call waits before it is done
//                     kill-before         the process ends (SIGKILL) before the call is done
//                     kill-after          the process ends once the call is done
// @return 0; otherwise the number, from 1, of the first rule that is not understood: none is then added
int zvsimcard_add_rules(const char* rules);

// Tells how many rules have not met their call: a sweep over the calls of a job is over when its rule is
// left.
//
// @return the number of rules
unsigned long zvsimcard_rules_left(void);

// Forgets rules, counts and the record, stops recording and the use of keys (but for ZVSIMCARD_KEYS). The
// cards stay as they are.
void zvsimcard_reset(void);

// Tells how many calls there were since the module was loaded or the control was reset.
//
// @param[in] function  name of a function, or null for all
// @return the number of calls, those included that a rule kept from being done; 0 for an unknown name
unsigned long zvsimcard_calls(const char* function);

// Starts or stops the recording of calls. It is off at first.
//
// @param[in] on  0 to stop
void zvsimcard_record(int on);

// Gives the record: a line for each call, ended by a line feed, such as
//
//   C_GetAttributeValue hSession=1 hObject=1003 pTemplate={CKA_ID 255>3 445330} ulCount=1 -> 0x0
//
// that is the function, its arguments and what it gave by the standard's names, and the result in
// hexadecimal. An attribute shows its type, the length given, ">" and the length returned where that differs,
// and its value in hexadecimal. PINs, their lengths and the private numbers of keys are never recorded, nor
// is other data.
//
// @param[out] text  NUL-terminated, cut at the end if it does not fit; may be null when size is 0
// @param[in]  size  room in bytes, the NUL included
// @return the length of the whole record in bytes, without the NUL
unsigned long zvsimcard_recorded(char* text, unsigned long size);

// Takes the card out of a slot, for every process. The next call on each of its sessions answers
// CKR_DEVICE_REMOVED, all later ones CKR_SESSION_HANDLE_INVALID, also once the card is back; after
// C_GetSlotInfo or C_GetSlotList has seen the empty slot it is the latter at once. Calls that name the slot
// answer CKR_TOKEN_NOT_PRESENT.
//
// @param[in] slot  its number; the module need not be initialised
// @return 0; 1 when there is no such slot or the card cannot be changed: it is then as it was
int zvsimcard_take_out(unsigned long slot);

// Puts the card back into a slot. It needs a new session and a new login.
//
// @param[in] slot  its number; the module need not be initialised
// @return 0; 1 when there is no such slot or the card cannot be changed: it is then as it was
int zvsimcard_put_back(unsigned long slot);

// Hands out ready-made key pairs instead of generating them. C_GenerateKeyPair for an RSA pair with exponent
// 65537 then takes the first pair of the size in the file that the card does not hold; when there is none it
// generates one and adds it to the file, so that the next run finds it.
//
// @param[in] file  its path; made if need be. A line for each pair: modulus, public exponent, private
//                  exponent, the two primes, the two exponents and the coefficient, big-endian in
//                  hexadecimal, separated by blanks. Null generates again.
void zvsimcard_use_keys(const char* file);

#ifdef __cplusplus
}
#endif

#endif
