# Velocard.fmx in a folder of its own, lib/Velocard/. It stays loaded for good: Objective-C classes cannot be taken
# away again. Linked as C++, since CMake 3.25 sets no run path for Objective-C++.

target_link_libraries(velocard_plugin PUBLIC AddressBook AppKit ScriptingBridge fmwrapper)

set(plugin_folder "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/Velocard")
set(exports "${CMAKE_CURRENT_SOURCE_DIR}/Velocard.version")
add_library(velocard MODULE)
target_link_libraries(velocard PRIVATE velocard_plugin velocard_settings)
set_target_properties(velocard PROPERTIES
  PREFIX "" OUTPUT_NAME Velocard SUFFIX .fmx LINKER_LANGUAGE CXX
  LIBRARY_OUTPUT_DIRECTORY "${plugin_folder}"
  LINK_DEPENDS "${exports}"
  BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN;$ORIGIN/..")
target_link_options(velocard PRIVATE "LINKER:--version-script=${exports}" LINKER:-z,nodelete)
if(NOT VELOCARD_SANITIZE)
  # The sanitizers' run-time library comes from the program that loads the plug-in.
  target_link_options(velocard PRIVATE LINKER:--no-undefined)
endif()

# Resources/ beside the library, brought up to date with each build.
configure_file("${resources}/Info.plist" "${plugin_folder}/Resources/Info.plist")
set(strings English.lproj/KORUFMPlugin.strings)
add_custom_command(OUTPUT "${plugin_folder}/Resources/${strings}"
  COMMAND "${CMAKE_COMMAND}" -E copy "${resources}/${strings}" "${plugin_folder}/Resources/${strings}"
  DEPENDS "${resources}/${strings}")
add_custom_target(velocard_resources ALL DEPENDS "${plugin_folder}/Resources/${strings}")
add_dependencies(velocard velocard_resources)

install(TARGETS velocard LIBRARY DESTINATION "${VELOCARD_LIBRARIES}/Velocard" COMPONENT runtime)
install(DIRECTORY "${plugin_folder}/Resources" DESTINATION "${VELOCARD_LIBRARIES}/Velocard" COMPONENT runtime)
install(TARGETS velocard LIBRARY DESTINATION "${VELOCARD_SERVER_EXTENSIONS}" COMPONENT server EXCLUDE_FROM_ALL)
install(DIRECTORY "${plugin_folder}/Resources" DESTINATION "${VELOCARD_SERVER_EXTENSIONS}" COMPONENT server EXCLUDE_FROM_ALL)
