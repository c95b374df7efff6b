# Compares the dynamic symbols of LIBRARY, which NM lists, with the table CALLS and the functions named in MORE.
execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
list(TRANSFORM exported STRIP)
list(SORT exported)

file(STRINGS "${CALLS}" expected REGEX "^CALL")
list(TRANSFORM expected REPLACE "^CALL[A-Z_]*\\([0-9]+, [a-z0-9]+, ([A-Za-z]+), ([A-Za-z0-9]+),.*" "FM_\\1_\\2")
list(APPEND expected ${MORE})
list(SORT expected)

if(NOT exported STREQUAL expected)
  set(extra ${exported})
  list(REMOVE_ITEM extra ${expected})
  list(REMOVE_ITEM expected ${exported})
  message(FATAL_ERROR "exported but not in the table: ${extra}\nin the table but not exported: ${expected}")
endif()
