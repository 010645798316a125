# kora_library(NAME <target> SOURCES <files...> [DEPS <targets...>])
#   A static subsystem library. Include root is src/, so code includes
#   "sys/throw.h", "logging/logger.h", ... Compiled PIC, hidden visibility.
function(kora_library)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;DEPS" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_DEPS})
endfunction()

# kora_test(NAME <target> SOURCES <files...> [DEPS <targets...>])
#   A GoogleTest executable registered with CTest as one test.
function(kora_test)
  if(NOT KORA_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;DEPS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main)
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
endfunction()

# kora_benchmark(NAME <target> SOURCES <files...> [DEPS <targets...>])
#   A Google Benchmark program, built with -DKORA_BUILD_BENCHMARKS=ON
#   (make bench runs every bench/*_bench it finds).
function(kora_benchmark)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;DEPS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_DEPS} benchmark::benchmark)
endfunction()

# kora_fuzzer(NAME <target> SOURCES <files...> [DEPS <targets...>])
#   A libFuzzer target (clang only, -DKORA_BUILD_FUZZERS=ON). The whole tree is
#   compiled with coverage and the sanitizers of KORA_SANITIZE (make fuzz:
#   address,undefined); the target links libFuzzer's driver. Exports its
#   symbols, so that it may give the library a logging document.
function(kora_fuzzer)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;DEPS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
  target_compile_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer)
  target_link_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_DEPS})
  set_target_properties(${ARG_NAME} PROPERTIES ENABLE_EXPORTS ON)
endfunction()
