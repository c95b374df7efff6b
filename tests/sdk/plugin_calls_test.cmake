# Looks up each function of the interface that PLUGIN calls, which NM lists, in the table CALLS: a host of any version from
# 53 on must have it, or it could not load the plug-in.
execute_process(COMMAND "${NM}" -D --undefined-only "${PLUGIN}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "FM_[A-Za-z0-9_]+" called "${symbols}")
list(LENGTH called count)
if(count LESS 20)
  message(FATAL_ERROR "only ${count} functions of the interface found in ${PLUGIN}")
endif()

file(STRINGS "${CALLS}" always REGEX "^CALL[A-Z_]*\\(53, kept,")
list(TRANSFORM always REPLACE "^CALL[A-Z_]*\\(53, kept, ([A-Za-z]+), ([A-Za-z0-9]+),.*" "FM_\\1_\\2")
list(REMOVE_ITEM called ${always})
if(called)
  message(FATAL_ERROR "not in every version of the interface: ${called}")
endif()
