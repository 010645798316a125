# Sanitizer and fuzzing flags for the whole tree.
#
# KORA_SANITIZE: a list for -fsanitize= (e.g. address,undefined, or thread).
#  - Every report is fatal (-fno-sanitize-recover=all): a test that provokes
#    one fails instead of printing and passing.
#  - With undefined, float-cast-overflow is added where the compiler knows it:
#    GCC leaves it out of undefined, and a double converted to an integer type
#    it does not fit is undefined behaviour.
#  - With undefined and Clang, testing/sanitizer_ignorelist.txt names the
#    functions left unchecked.
# KORA_BUILD_FUZZERS: everything is compiled with libFuzzer's coverage
# (-fsanitize=fuzzer-no-link), so the fuzz targets are guided by the library's
# own branches; kora_fuzzer links the driver.
# KORA_INITIAL_BUFFER_BYTES: when set, caps the starting size in bytes of the
# reader's frame buffers (they still grow as frames need). make fuzz sets it:
# under ASan, taking and releasing the ordinary tens of megabytes on every
# open and close costs more than reading a small analysis.
# KORA_MAX_BELIEVED_BYTES: when set, caps the sizes read from the frame file
# that the reader believes (a frame's stored and expanded sizes, a run of
# scans): a larger one fails as an oversized one does instead of being
# allocated. make fuzz sets it: under ASan a lying size is paid in full.
include(CheckCXXSourceCompiles)

if(KORA_SANITIZE)
  set(_kora_sanitizers "${KORA_SANITIZE}")
  if(_kora_sanitizers MATCHES "(^|,)undefined(,|$)" AND
     NOT _kora_sanitizers MATCHES "float-cast-overflow")
    set(CMAKE_REQUIRED_FLAGS "-fsanitize=float-cast-overflow")
    set(CMAKE_REQUIRED_LINK_OPTIONS "-fsanitize=float-cast-overflow")
    check_cxx_source_compiles("int main() { return 0; }" KORA_HAVE_FLOAT_CAST_OVERFLOW)
    unset(CMAKE_REQUIRED_FLAGS)
    unset(CMAKE_REQUIRED_LINK_OPTIONS)
    if(KORA_HAVE_FLOAT_CAST_OVERFLOW)
      string(APPEND _kora_sanitizers ",float-cast-overflow")
    endif()
  endif()
  add_compile_options(-fsanitize=${_kora_sanitizers} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND _kora_sanitizers MATCHES "(^|,)undefined(,|$)")
    add_compile_options(
      "$<$<COMPILE_LANGUAGE:CXX>:-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/testing/sanitizer_ignorelist.txt>")
  endif()
  add_link_options(-fsanitize=${_kora_sanitizers} -fno-sanitize-recover=all)
  # Clang links the C++ part of a sanitizer runtime (vptr checks, operator
  # new and delete) only into C++ programs; a C program on the library needs
  # it too.
  if(CMAKE_C_COMPILER_ID STREQUAL "Clang")
    add_link_options("$<$<LINK_LANGUAGE:C>:-fsanitize-link-c++-runtime;-lstdc++>")
  endif()
endif()

if(KORA_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

set(KORA_INITIAL_BUFFER_BYTES "" CACHE STRING "Cap on the reader's starting buffer sizes (empty: none)")
if(KORA_INITIAL_BUFFER_BYTES)
  add_compile_definitions(KORA_INITIAL_BUFFER_BYTES=${KORA_INITIAL_BUFFER_BYTES})
endif()
set(KORA_MAX_BELIEVED_BYTES "" CACHE STRING "Cap on the sizes the reader believes from the frame file (empty: none)")
if(KORA_MAX_BELIEVED_BYTES)
  add_compile_definitions(KORA_MAX_BELIEVED_BYTES=${KORA_MAX_BELIEVED_BYTES})
endif()
