# Writes COUNT private keys in PEM to FILE with the program OPENSSL.
set(text "")
foreach(number RANGE 1 ${COUNT})
  execute_process(COMMAND ${OPENSSL} genrsa 2048 OUTPUT_VARIABLE key ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  string(APPEND text "${key}")
endforeach()
file(WRITE ${FILE} "${text}")
file(CHMOD ${FILE} PERMISSIONS OWNER_READ OWNER_WRITE)
