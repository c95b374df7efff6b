# Asks gnustep-config how to compile against GNUstep's Foundation; its own -g, -O and dependency flags are
# CMake's business here, and its headers are system headers, so that our warnings are about our code.

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND "${GNUSTEP_CONFIG}" --objc-flags OUTPUT_VARIABLE gnustep_flags
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(gnustep_flags UNIX_COMMAND "${gnustep_flags}")

# Our headers stand in front of GNUstep's of the same name and include them.
target_include_directories(velocard_foundation INTERFACE "${PROJECT_SOURCE_DIR}/frameworks/Foundation/include")

set(gnustep_options)
foreach(flag IN LISTS gnustep_flags)
  if(flag MATCHES "^-I/")
    string(SUBSTRING "${flag}" 2 -1 folder)
    if(folder STREQUAL "/usr/include/GNUstep")
      target_include_directories(velocard_foundation SYSTEM INTERFACE "${folder}")
    endif()
  elseif(flag MATCHES "^-(D|f|pthread)")
    list(APPEND gnustep_options "${flag}")
  endif()
endforeach()
list(REMOVE_DUPLICATES gnustep_options)
target_compile_options(velocard_foundation INTERFACE
  "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${gnustep_options}>"
  "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-Wno-import;-Werror=undeclared-selector>"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:-Wno-subobject-linkage>")
target_link_libraries(velocard_foundation INTERFACE gnustep-base objc)
