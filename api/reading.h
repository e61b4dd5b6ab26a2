#pragma once

namespace zv {

// A host's buffers for a reading; each may be null.
struct Reading {
    char** list_cns;
    char** list_pra;
    char** list_aut;
    int* pending_cns;
    int* pending_pra;
    int* pending_aut;
    char* key_pra;
    char* key_aut;
};

// Detects the card and lists what it holds. A null reader is the first that holds a card.
[[nodiscard]] int read_certificates(const Reading& buffers, char* reader, char* pin, const char* module_dir);

// Finds the identifiers for new pairs; each buffer may be null.
[[nodiscard]] int find_free_identifiers(char* reader, char* pin, char* key_pra, char* key_aut);

// Ends a reading that there was no memory for.
int close_unusable();

} // namespace zv
