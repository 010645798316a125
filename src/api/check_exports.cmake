# Fails unless LIB exports exactly the functions of include/koradata.h.
set(EXPECTED
  kora_close
  kora_get_last_error_string
  kora_has_recalibrated_state
  kora_open
  kora_set_num_threads
)
execute_process(COMMAND nm -D --defined-only ${LIB} OUTPUT_VARIABLE out RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIB}")
endif()
string(REPLACE "\n" ";" lines "${out}")
set(actual)
foreach(line IN LISTS lines)
  if(line MATCHES "([^ ]+)$")
    set(name ${CMAKE_MATCH_1})
    if(NOT name MATCHES "^(_init|_fini|_edata|_end|__bss_start)$")
      list(APPEND actual ${name})
    endif()
  endif()
endforeach()
list(SORT actual)
list(SORT EXPECTED)
if(NOT actual STREQUAL EXPECTED)
  message(FATAL_ERROR "exports differ:\n  expected: ${EXPECTED}\n  actual:   ${actual}")
endif()
list(LENGTH actual n)
message(STATUS "${n} exports, all kora_")
