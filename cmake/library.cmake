# The renewal library: the eight layers compiled once, then linked as a static and as a shared library.
set(ZV_LAYERS util diag card store inventory request install api)

add_library(zvrenew_objects OBJECT)
target_link_libraries(zvrenew_objects PUBLIC zv_compile min_zvCrypt ${CMAKE_DL_LIBS})
target_include_directories(zvrenew_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_compile_definitions(zvrenew_objects PRIVATE ZV_VERSION="${PROJECT_VERSION}")
foreach(layer IN LISTS ZV_LAYERS)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${layer}/*.cpp)
  target_sources(zvrenew_objects PRIVATE ${sources})
endforeach()

add_library(zvrenew_core STATIC $<TARGET_OBJECTS:zvrenew_objects>)
target_link_libraries(zvrenew_core PUBLIC zv_compile min_zvCrypt ${CMAKE_DL_LIBS})
target_include_directories(zvrenew_core PUBLIC ${PROJECT_SOURCE_DIR})

add_library(zvRenew SHARED $<TARGET_OBJECTS:zvrenew_objects>)
target_link_libraries(zvRenew PRIVATE zv_compile min_zvCrypt ${CMAKE_DL_LIBS})
target_include_directories(zvRenew INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

# exports.txt holds one symbol a line, sorted; the linker's list is made from it.
set(exports ${PROJECT_SOURCE_DIR}/exports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
file(STRINGS ${exports} symbols)
set(host_variables szBuffErr szSockMsg use2048Bit force2048PraGen is1205SerialToken errorMessages)
if(APPLE)
  list(TRANSFORM symbols PREPEND "_" OUTPUT_VARIABLE listed)
  list(JOIN listed "\n" text)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/zvRenew.exports CONTENT "${text}\n" @ONLY)
  target_link_options(zvRenew PRIVATE -Wl,-exported_symbols_list,${PROJECT_BINARY_DIR}/zvRenew.exports)
  set_target_properties(zvRenew PROPERTIES OUTPUT_NAME zvRenew.${PROJECT_VERSION})
  set(link_name ${PROJECT_BINARY_DIR}/lib/libzvRenew.dylib)
  add_custom_command(TARGET zvRenew POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E create_symlink libzvRenew.${PROJECT_VERSION}.dylib ${link_name})
else()
  list(JOIN symbols ";\n    " text)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/zvRenew.map
    CONTENT "{\n  global:\n    ${text};\n  local: *;\n};\n" @ONLY)
  list(JOIN host_variables ";\n  " text)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/zvRenew.dynlist CONTENT "{\n  ${text};\n};\n" @ONLY)
  # A host's own symbol of the same name must not take the place of ours, but for the variables that it
  # reads through a copy relocation.
  target_link_options(zvRenew PRIVATE
    -Wl,--version-script=${PROJECT_BINARY_DIR}/zvRenew.map
    -Wl,-Bsymbolic -Wl,--dynamic-list=${PROJECT_BINARY_DIR}/zvRenew.dynlist)
  set_target_properties(zvRenew PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1
    LINK_DEPENDS "${PROJECT_BINARY_DIR}/zvRenew.map;${PROJECT_BINARY_DIR}/zvRenew.dynlist")
endif()
