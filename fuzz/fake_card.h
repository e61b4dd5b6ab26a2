#pragma once

#include "fuzz/input.h"
#include "pkcs11.h"

#include <vector>

// A PKCS#11 module with a card in it whose answers the input spoils: each call takes a byte, and below 0xC0, or
// once the input is used up, it is a good card's.
namespace fuzz {

struct FakeObject {
    CK_OBJECT_CLASS object_class;
    std::string id, label, value;
    bool destroyed = false;
};

struct FakeCard {
    Input* answers = nullptr;
    std::vector<FakeObject> objects;
    std::string reader, serial;
    int refused_pins = 0;
    bool endless = false; // the open search never ends
    bool was_endless = false;
};

extern FakeCard card;

// The certificate of the one RSA key that all keys of the card are.
const std::string& own_certificate();

} // namespace fuzz

extern "C" __attribute__((visibility("default"))) CK_RV fake_function_list(CK_FUNCTION_LIST_PTR_PTR list);
