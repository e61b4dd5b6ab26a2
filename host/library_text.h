#pragma once

#include "host/error.h"

#include <string>
#include <vector>

namespace zvhost {

// Empties the library's texts for the user, so that what stands there afterwards belongs to the next call.
void forget_library_texts();

// Says why a call of the library failed, to end a sentence: `: "Pin errato" (0xA0)`.
//
// The library's own Italian texts are quoted as they are, each as the sentence "quoted" with its {text}; where it left
// none, the table of PKCS#11 messages is asked, and for the library's own codes a few words of ours stand in.
[[nodiscard]] std::vector<Sentence> library_reason(int code);

// A failed call of the library, as an Error: the sentence of that identifier, whose "{reason}" is library_reason().
[[nodiscard]] Error library_stop(const std::string& id, int code);
[[nodiscard]] Error library_stop(const std::string& id, int code, Advice advice);

// The crypto library's reason of its last failure, to end a sentence in the same way.
[[nodiscard]] std::vector<Sentence> crypto_reason(int code);

} // namespace zvhost
