// A services card's personal data, by itself and as the object of a card.
#include "card/session.h"
#include "fuzz/input.h"
#include "routines.h"

#include <cctype>

namespace {

std::string_view personal_data;
CK_ULONG given = 0;

CK_RV start_search(CK_SESSION_HANDLE, CK_ATTRIBUTE_PTR, CK_ULONG) {
    given = 0;
    return CKR_OK;
}

CK_RV next_object(CK_SESSION_HANDLE, CK_OBJECT_HANDLE_PTR object, CK_ULONG, CK_ULONG_PTR count) {
    *object = 1;
    *count = given++ == 0 ? 1 : 0;
    return CKR_OK;
}

CK_RV end_search(CK_SESSION_HANDLE) {
    return CKR_OK;
}

// One data object, labelled as the personal data are.
CK_RV read_attributes(CK_SESSION_HANDLE, CK_OBJECT_HANDLE, CK_ATTRIBUTE_PTR tmpl, CK_ULONG) {
    const CK_OBJECT_CLASS data = CKO_DATA;
    std::string_view value;
    if (tmpl->type == CKA_CLASS) value = {reinterpret_cast<const char*>(&data), sizeof data};
    if (tmpl->type == CKA_LABEL) value = "PDATA";
    if (tmpl->type == CKA_VALUE) value = personal_data;
    if (value.data() == nullptr) return CKR_ATTRIBUTE_TYPE_INVALID;
    if (value.size() > tmpl->ulValueLen) return CKR_BUFFER_TOO_SMALL;
    tmpl->ulValueLen = value.size();
    std::memcpy(tmpl->pValue, value.data(), value.size());
    return CKR_OK;
}

// Where the date stands, read a second time; empty without one.
std::string date_in(const std::string& text) {
    if (text.size() < 8) return {};
    std::string mark = text.substr(8, 3);
    for (char& c : mark)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const long length = std::strtol(text.substr(6, 2).c_str(), nullptr, 10);
    const std::size_t start = 20 + static_cast<std::size_t>(std::max(length, 0L));
    return mark == "XXX" || length <= 0 || start + 8 > text.size() ? std::string() : text.substr(start, 8);
}

void from_card(std::string_view bytes, const std::string& date) {
    static CK_FUNCTION_LIST functions = [] {
        CK_FUNCTION_LIST list{};
        list.C_FindObjectsInit = start_search;
        list.C_FindObjects = next_object;
        list.C_FindObjectsFinal = end_search;
        list.C_GetAttributeValue = read_attributes;
        return list;
    }();
    personal_data = bytes;
    zv::p = &functions;
    zv::hModule = &functions;
    fuzz::Room expiry(9), key_pra(ZV_KEY_ID_SIZE), key_aut(ZV_KEY_ID_SIZE);
    int pending[3] = {};
    const int code = Find_ALL_PendingCNS(&pending[0], &pending[1], &pending[2], key_pra.get(), key_aut.get(),
                                         expiry.get(), false);
    HOLDS(code == (bytes.size() > 16383 ? 65535 : 0));
    HOLDS(code != 0 || date.empty() ? expiry.untouched() : expiry.text() == date);
    HOLDS(key_pra.text().empty() && key_aut.text().empty() && pending[0] + pending[1] + pending[2] == 0);
    zv::hModule = nullptr;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    fuzz::Room text(input.text().size() + 1, input.text()), out(9);
    const std::string date = date_in(input.text());
    getDtScadenza(text.get(), out.get());
    HOLDS(date.empty() ? out.untouched() : out.text() == date);
    from_card(input.bytes(), date);
    int expected = 1;
    for (std::size_t i = 0; text.text().size() == 16 && i < 11; ++i)
        if ((std::isdigit(static_cast<unsigned char>(text.get()[i])) != 0) != ("LLLLLLDDLDD"[i] == 'D'))
            expected = 0;
    HOLDS(isCodFisc(text.get()) == expected);
    return 0;
}
