// A host with global names of its own that the library has too: neither may disturb the other. Its argument
// is a file for the log.
#include "zvRenew.h"

#include <cstdio>
#include <cstring>

extern "C" {
// The library's, by hand: routines.h would declare its replace and SET, which are the host's here.
char* X1(char* text);
void _RiempiDN(char* dn, unsigned int size);
char* getLogPath(void);

// Exported by the host, so that the loader finds these first.
#pragma GCC visibility push(default)
int p = 1;
long rv = 2;
char buffer[] = "host buffer";
char x1[] = "host x1";
int calls = 0;
int replace() {
    return ++calls;
}
int SET() {
    return ++calls;
}
int presente() {
    return ++calls;
}
}

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    ++failures;
}

void use_the_library() {
    char number[] = "100";
    expect(std::strcmp(X1(number), "16379") == 0, "X1 answers in a text of the library");

    char name[4096] = "2.5.4.6=IT/serialNumber=A1";
    _RiempiDN(name, sizeof name);
    expect(std::strcmp(name, "\n2.5.4.6=IT\n2.5.4.5=A1") == 0, "the library uses its own replace");

    char module[] = "no_such_module.dll";
    char pin[] = "";
    int result = rinnovo_Card_readCerts(module, pin, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr, nullptr, nullptr, "");
    expect(result == ZV_UNUSABLE, "a module that is not there is reported");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    std::snprintf(getLogPath(), 513, "%s", argv[1]);
    use_the_library();
    expect(calls == 0, "the library calls no function of the host");
    expect(p == 1 && rv == 2 && std::strcmp(buffer, "host buffer") == 0 && std::strcmp(x1, "host x1") == 0,
           "the host's variables are untouched");
    return failures;
}
