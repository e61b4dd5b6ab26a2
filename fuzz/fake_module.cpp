// The module that the library loads: the card itself is in the program that fuzzes.
#include "fuzz/fake_card.h"

extern "C" __attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR list) {
    return fake_function_list(list);
}
