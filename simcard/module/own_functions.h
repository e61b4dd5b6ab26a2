#pragma once

#include "pkcs11.h"

namespace simcard {

// The functions for which a card's answer is not SoftHSM's; the other entries are null.
[[nodiscard]] const CK_FUNCTION_LIST& own_functions();

// The function list that callers get.
[[nodiscard]] CK_FUNCTION_LIST* public_functions();

namespace own {

CK_RV initialize(CK_VOID_PTR init_args);
CK_RV finalize(CK_VOID_PTR reserved);
CK_RV get_function_list(CK_FUNCTION_LIST_PTR_PTR list);

CK_RV get_info(CK_INFO_PTR info);
CK_RV get_slot_list(CK_BBOOL token_present, CK_SLOT_ID_PTR list, CK_ULONG_PTR count);
CK_RV get_slot_info(CK_SLOT_ID slot, CK_SLOT_INFO_PTR info);
CK_RV get_token_info(CK_SLOT_ID slot, CK_TOKEN_INFO_PTR info);

CK_RV open_session(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR application, CK_NOTIFY notify,
                   CK_SESSION_HANDLE_PTR session);
CK_RV close_session(CK_SESSION_HANDLE session);
CK_RV close_all_sessions(CK_SLOT_ID slot);
CK_RV get_session_info(CK_SESSION_HANDLE session, CK_SESSION_INFO_PTR info);

CK_RV login(CK_SESSION_HANDLE session, CK_USER_TYPE user, CK_UTF8CHAR_PTR pin, CK_ULONG length);
CK_RV set_pin(CK_SESSION_HANDLE session, CK_UTF8CHAR_PTR old_pin, CK_ULONG old_length,
              CK_UTF8CHAR_PTR new_pin, CK_ULONG new_length);
CK_RV init_pin(CK_SESSION_HANDLE session, CK_UTF8CHAR_PTR pin, CK_ULONG length);
CK_RV init_token(CK_SLOT_ID slot, CK_UTF8CHAR_PTR pin, CK_ULONG length, CK_UTF8CHAR_PTR label);

CK_RV destroy_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object);
CK_RV set_attribute_value(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_PTR attributes,
                          CK_ULONG count);
CK_RV find_objects_init(CK_SESSION_HANDLE session, CK_ATTRIBUTE_PTR attributes, CK_ULONG count);
CK_RV find_objects(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE_PTR objects, CK_ULONG most,
                   CK_ULONG_PTR count);
CK_RV find_objects_final(CK_SESSION_HANDLE session);

CK_RV generate_key_pair(CK_SESSION_HANDLE session, CK_MECHANISM_PTR mechanism,
                        CK_ATTRIBUTE_PTR public_attributes, CK_ULONG public_count,
                        CK_ATTRIBUTE_PTR private_attributes, CK_ULONG private_count,
                        CK_OBJECT_HANDLE_PTR public_key, CK_OBJECT_HANDLE_PTR private_key);

} // namespace own
} // namespace simcard
