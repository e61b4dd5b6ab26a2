# Compiler settings that every target of ours takes by linking zv_compile; nothing is set globally.
add_library(zv_compile INTERFACE)
target_compile_options(zv_compile INTERFACE
  -Wall -Wextra -Wshadow -Wconversion $<$<BOOL:${ZV_WERROR}>:-Werror>
  # g++ 12 warns falsely when a std::string takes a literal.
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
  -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
  -fstack-protector-strong)
target_include_directories(zv_compile INTERFACE ${PROJECT_SOURCE_DIR}/include)

if(ZV_FUZZ)
  set(ZV_SANITIZE ON)
  # Comparisons are not traced: up to a third of an execution, and the dictionaries hold the words that are compared.
  target_compile_options(zv_compile INTERFACE -fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp
    -include ${PROJECT_SOURCE_DIR}/fuzz/limits.h)
endif()
# Files compiled together see each other's file-wide names: too many of them for tests, for a whole library at once, and for
# clang++'s look at shadows.
define_property(TARGET PROPERTY ZV_SHADOWS INITIALIZE_FROM_VARIABLE ZV_SHADOWS)
set(together $<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>)
set(shadows $<OR:$<BOOL:${ZV_SANITIZE}>,$<BOOL:$<TARGET_PROPERTY:ZV_SHADOWS>>,$<COMPILE_LANG_AND_ID:CXX,Clang,AppleClang>>)
target_compile_options(zv_compile INTERFACE $<$<AND:${together},${shadows}>:-Wno-shadow>
  $<$<AND:${together},$<COMPILE_LANG_AND_ID:CXX,GNU>>:-Wno-subobject-linkage>)
if(ZV_SANITIZE)
  target_compile_options(zv_compile INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer $<$<COMPILE_LANG_AND_ID:CXX,Clang,AppleClang>:-fno-sanitize=function>)
  target_link_options(zv_compile INTERFACE -fsanitize=address,undefined)
  # The runtime is one library for all that a process loads, also where the program itself is not ours.
  set(runtime libasan.so)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND NOT APPLE AND NOT ZV_FUZZ)
    set(runtime libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
    target_compile_definitions(zv_compile INTERFACE __SANITIZE_ADDRESS__) # as g++ has it
    target_compile_options(zv_compile INTERFACE -shared-libasan)
    target_link_options(zv_compile INTERFACE -shared-libasan)
  endif()
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE ZV_ASAN_RUNTIME
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(IS_ABSOLUTE "${ZV_ASAN_RUNTIME}")
    cmake_path(GET ZV_ASAN_RUNTIME PARENT_PATH folder)
    target_link_options(zv_compile INTERFACE -Wl,-rpath,${folder})
  endif()
else()
  # Who builds may have a level of their own, and a compiler may have one built in. It needs an optimised build.
  string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
  string(FIND "${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${type}}" _FORTIFY_SOURCE own_level)
  if(own_level EQUAL -1)
    target_compile_options(zv_compile INTERFACE
      "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>")
  endif()
  if(NOT APPLE)
    target_link_options(zv_compile INTERFACE -Wl,-z,defs)
  endif()
endif()
if(NOT APPLE)
  target_link_options(zv_compile INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
endif()
