/** Text and number helpers: none fails but where it says so, none logs. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_UTIL_H
#define ZV_ROUTINES_UTIL_H

#include "zvRenew.h"

extern "C" {

/** Result of ItoA and LtoA, scratch of CatItoA and CatLtoA. */
extern ZV_API char ILtoAbuff[32];
/** Result of ItoAHex and LtoAHex, scratch of the other "Hex" helpers. */
extern ZV_API char ILtoAbuffHex[32];
/** Result of CatItoA and CatLtoA. */
extern ZV_API char CatILtoAbuff[128];
/** Result of CatItoAHex1 and CatLtoAHex1. */
extern ZV_API char CatILtoAbuffHex1[128];
/** Result of CatItoAHex2 and CatLtoAHex2. */
extern ZV_API char CatILtoAbuffHex2[128];
/** Result of CatSZtoSZ. */
extern ZV_API char CatSZtoSZbuff[256];
/** Results of X1, X2 and X3. */
extern ZV_API char x1[32], x2[32], x3[32];

/** Writes value in decimal into buffer (12 bytes; radix is not read). Returns buffer. */
ZV_API char* _itoa(int value, char* buffer, int radix);
/** Writes value in decimal into buffer (21 bytes; radix is not read). Returns buffer. */
ZV_API char* _ltoa(long value, char* buffer, int radix);
/** Upper-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strupr(char* text);
/** Lower-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strlwr(char* text);
/** Removes trailing blanks (the space only) in place. Returns text; null stays null. */
ZV_API char* RTrim(char* text);
/** Removes leading blanks (the space only) in place. Returns text; null stays null. */
ZV_API char* LTrim(char* text);
/** RTrim, then LTrim. Returns text; null stays null. */
ZV_API char* AllTrim(char* text);
/** Replaces every "," by "." in place. Returns text; null stays null. */
ZV_API char* VirgolaToPunto(char* text);
/** Replaces every "+" by a blank, then decodes as UnEscape does, in place. Returns text; null stays null. */
ZV_API char* Converte(char* text);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* ItoA(int value);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* LtoA(long value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* ItoAHex(int value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* LtoAHex(long value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all; null is empty), then value in decimal. */
ZV_API char* CatItoA(const char* prefix, int value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all; null is empty), then value in decimal. */
ZV_API char* CatLtoA(const char* prefix, long value);
/**
 * Writes prefix (null is empty), "0x" and the decimal digits of value into destination (14 bytes more than
 * the prefix has characters). Returns destination; null stays null.
 */
ZV_API char* CatItoAHex(char* destination, const char* prefix, int value);
/**
 * Writes prefix (null is empty), "0x" and the decimal digits of value into destination (23 bytes more than
 * the prefix has characters). Returns destination; null stays null.
 */
ZV_API char* CatLtoAHex(char* destination, const char* prefix, long value);
/**
 * Returns CatILtoAbuffHex1: prefix (cut to fit 127 characters in all; null is empty), "0x", the decimal
 * digits of value.
 */
ZV_API char* CatItoAHex1(const char* prefix, int value);
/** As CatItoAHex1, for a long. */
ZV_API char* CatLtoAHex1(const char* prefix, long value);
/** As CatItoAHex1, in CatILtoAbuffHex2: an entry with two such values needs both buffers. */
ZV_API char* CatItoAHex2(const char* prefix, int value);
/** As CatItoAHex2, for a long. */
ZV_API char* CatLtoAHex2(const char* prefix, long value);
/** Returns CatSZtoSZbuff: first, then second, cut to 255 characters; null is empty. */
ZV_API char* CatSZtoSZ(const char* first, const char* second);
/**
 * Finds needle in haystack whatever the case of the letters. Returns the place in haystack; null when it is
 * not there and for a null argument.
 */
ZV_API char* strstrICase(const char* haystack, const char* needle);
/** Returns length (bytes) less the zero bytes at the end of buffer; a length below 1 as it is. */
ZV_API int HexLen(char* buffer, int length);
/**
 * Decodes "%" and two hexadecimal digits to one byte each (RFC 3986, section 2.1). The two characters are not
 * checked; a percent sign without two characters after it is copied as it stands.
 *
 * @param[in] text  stays as it is
 * @return a text that the caller releases with free(); null for null or without memory
 */
ZV_API char* UnEscape(char* text);
/**
 * Finds the value of a named field in a text of name and value pairs.
 *
 * @param[in]  text            the pairs
 * @param[in]  name            the field's name; it counts where a pair starts or after one of "\n ,:;="
 * @param[out] output          the value without blanks around it; one byte more than text has characters
 * @param[in]  pairSeparator   text between pairs; null is empty
 * @param[in]  valueSeparator  text between a name and its value; null is empty
 * @return 0; -1 no such field, or text, name or output is null; -4 the name with no value separator anywhere
 *         behind it
 * After a failure: output is empty, but untouched when an argument was null.
 */
ZV_API int NWGetOpt(char* text, char* name, char* output, char* pairSeparator, char* valueSeparator);
/**
 * NWGetOpt for the form "a=1&b=2" with the value decoded as Converte does and blanks around it removed.
 * Always 0; a missing field and a null argument leave output empty.
 */
ZV_API int Valore(char* text, char* name, char* output);
/**
 * Returns a date DD?MM?YYYY as the number YYYYMMDD; 0 for an empty text and null. A part that is no number
 * counts as 0.
 */
ZV_API long DataToLong(char* date);
/**
 * Writes n x 28 + 13579 in decimal into output (21 bytes), n the number in text; empty for an empty text and
 * null. Returns output; null stays null.
 */
ZV_API char* XX(char* text, char* output);
/** As XX, into x1. */
ZV_API char* X1(char* text);
/** As XX, into x2. */
ZV_API char* X2(char* text);
/** As XX, into x3. */
ZV_API char* X3(char* text);

} // extern "C"

#endif
