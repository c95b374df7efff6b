# The plug-in exports its entry point and nothing else, stays loaded for good, and finds its libraries beside itself.

execute_process(COMMAND "${NM}" -D --defined-only "${PLUGIN}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[0-9a-f]+ [A-Za-z] " "" symbols "${symbols}")
string(STRIP "${symbols}" symbols)
if(NOT symbols STREQUAL "FMExternCallProc")
  message(FATAL_ERROR "exported: ${symbols}")
endif()

execute_process(COMMAND "${READELF}" -dW "${PLUGIN}" OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
foreach(wanted "NODELETE" "\\[\\$ORIGIN:\\$ORIGIN/\\.\\.\\]" "libFMWrapper\\.so" "libAddressBook\\.so")
  if(NOT dynamic MATCHES "${wanted}")
    message(FATAL_ERROR "no ${wanted} in:\n${dynamic}")
  endif()
endforeach()
