# Velocard.fmplugin. The AddressBook framework is linked weakly: the plug-in starts without loading it.

set(apple_options -fno-objc-arc -fexceptions -Wno-deprecated-declarations)
if(CMAKE_OSX_DEPLOYMENT_TARGET VERSION_LESS 11.0)
  # No Mac with arm64 has an older system. Apple's clang knows; others take what they are told.
  set(arm64_target "SHELL:-Xarch_arm64 -mmacosx-version-min=11.0")
endif()
target_compile_options(velocard_plugin PRIVATE ${apple_options} ${arm64_target})

set(exports "${CMAKE_CURRENT_SOURCE_DIR}/Velocard.exp")
set(strings "${resources}/English.lproj/KORUFMPlugin.strings")
add_library(velocard MODULE)
target_link_libraries(velocard PRIVATE velocard_plugin velocard_settings
  "-framework AppKit" "-framework CoreFoundation" "-framework ScriptingBridge" "-weak_framework AddressBook")
if(EXISTS "${FMWRAPPER_SDK}/FMWrapper.framework")
  target_link_options(velocard PRIVATE "-F${FMWRAPPER_SDK}")
  target_link_libraries(velocard PRIVATE "-framework FMWrapper")
else()
  # Without the framework at hand, the host that loads the plug-in supplies the interface's functions, and nothing else.
  file(GLOB interface_headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/sdk/FMWrapper/*.h")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${interface_headers})
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/interface-functions" OUTPUT_VARIABLE functions
    COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "([^\n]+)\n" "-Wl,-U,_\\1;" undefined_options "${functions}")
  target_link_options(velocard PRIVATE ${undefined_options})
endif()
target_link_options(velocard PRIVATE ${arm64_target} "LINKER:-exported_symbols_list,${exports}")
set_target_properties(velocard PROPERTIES
  BUNDLE ON BUNDLE_EXTENSION fmplugin OUTPUT_NAME Velocard LINKER_LANGUAGE OBJCXX
  LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
  MACOSX_BUNDLE_INFO_PLIST "${resources}/Info.plist" LINK_DEPENDS "${exports};${strings}")
add_custom_command(TARGET velocard POST_BUILD
  COMMAND "${CMAKE_COMMAND}" -E copy_directory
    "${resources}/English.lproj" "$<TARGET_BUNDLE_CONTENT_DIR:velocard>/Resources/English.lproj")

# For hosts of 32 bits, whose link neither lld nor a current SDK knows, the sources are compiled: a check that they and the
# interface's structure fit. Current SDKs declare AppKit for 64 bits only.
set(i386_sources ${plugin_sources})
list(REMOVE_ITEM i386_sources images/person_image.mm)
add_library(velocard_i386 OBJECT EXCLUDE_FROM_ALL ${i386_sources})
target_link_libraries(velocard_i386 PRIVATE velocard_settings fmwrapper_sdk velocard_foundation)
target_compile_options(velocard_i386 PRIVATE ${apple_options})
set_target_properties(velocard_i386 PROPERTIES OSX_ARCHITECTURES i386)
