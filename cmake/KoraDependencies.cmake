# Every external dependency is a Debian package installed by
# scripts/bootstrap.sh; nothing is downloaded by the build.

find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS filesystem system thread regex date_time)
find_package(SQLite3 REQUIRED)
find_package(OpenMP REQUIRED COMPONENTS CXX)
find_package(LAPACK REQUIRED)

find_path(ZSTD_INCLUDE_DIR zstd.h REQUIRED)
find_library(ZSTD_LIBRARY zstd REQUIRED)
add_library(kora_dep_zstd INTERFACE)
target_include_directories(kora_dep_zstd SYSTEM INTERFACE ${ZSTD_INCLUDE_DIR})
target_link_libraries(kora_dep_zstd INTERFACE ${ZSTD_LIBRARY})

# utfcpp and the parts of VIGRA we use are header-only.
find_path(UTFCPP_INCLUDE_DIR utf8.h PATH_SUFFIXES utf8cpp REQUIRED)
add_library(kora_dep_utfcpp INTERFACE)
target_include_directories(kora_dep_utfcpp SYSTEM INTERFACE ${UTFCPP_INCLUDE_DIR})

find_path(VIGRA_INCLUDE_DIR vigra/polynomial.hxx REQUIRED)
add_library(kora_dep_vigra INTERFACE)
target_include_directories(kora_dep_vigra SYSTEM INTERFACE ${VIGRA_INCLUDE_DIR})

# Stack traces: Boost.Stacktrace over libbacktrace (file and line from DWARF).
find_library(BOOST_STACKTRACE_BACKTRACE_LIBRARY boost_stacktrace_backtrace REQUIRED)
add_library(kora_dep_stacktrace INTERFACE)
target_compile_definitions(kora_dep_stacktrace INTERFACE BOOST_STACKTRACE_LINK BOOST_STACKTRACE_USE_BACKTRACE)
target_link_libraries(kora_dep_stacktrace INTERFACE ${BOOST_STACKTRACE_BACKTRACE_LIBRARY} ${CMAKE_DL_LIBS})

# liblzf: only the writer and the tests (the reader has its own decoder).
find_path(LZF_INCLUDE_DIR lzf.h PATH_SUFFIXES liblzf REQUIRED)
find_library(LZF_LIBRARY lzf REQUIRED)
add_library(kora_dep_lzf INTERFACE)
target_include_directories(kora_dep_lzf SYSTEM INTERFACE ${LZF_INCLUDE_DIR})
target_link_libraries(kora_dep_lzf INTERFACE ${LZF_LIBRARY})

if(KORA_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(KORA_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
