# Velocard.fmplugin, against the host maker's framework (FMWRAPPER_SDK is the folder with FMWrapper.framework). The
# AddressBook framework is linked weakly: the plug-in starts without loading it.

target_compile_options(velocard_plugin PRIVATE -fno-objc-arc -fexceptions -Wno-deprecated-declarations)

set(exports "${CMAKE_CURRENT_SOURCE_DIR}/Velocard.exp")
set(strings "${resources}/English.lproj/KORUFMPlugin.strings")
add_library(velocard MODULE "${strings}")
target_link_libraries(velocard PRIVATE velocard_plugin velocard_settings
  "-framework AppKit" "-framework CoreFoundation" "-framework ScriptingBridge" "-weak_framework AddressBook")
if(EXISTS "${FMWRAPPER_SDK}/FMWrapper.framework")
  target_compile_options(velocard_plugin PUBLIC "-F${FMWRAPPER_SDK}")
  target_link_options(velocard PRIVATE "-F${FMWRAPPER_SDK}")
  target_link_libraries(velocard PRIVATE "-framework FMWrapper")
else()
  # Without the framework at hand, the host that loads the plug-in gives it the framework's functions.
  target_link_options(velocard PRIVATE LINKER:-undefined,dynamic_lookup)
endif()
target_link_options(velocard PRIVATE "LINKER:-exported_symbols_list,${exports}")
set_target_properties(velocard PROPERTIES
  BUNDLE ON BUNDLE_EXTENSION fmplugin OUTPUT_NAME Velocard LINKER_LANGUAGE OBJCXX
  MACOSX_BUNDLE_INFO_PLIST "${resources}/Info.plist" LINK_DEPENDS "${exports}")
set_source_files_properties("${strings}" PROPERTIES MACOSX_PACKAGE_LOCATION Resources/English.lproj)
