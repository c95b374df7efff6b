# Velocard.fmplugin, against the host maker's framework (FMWRAPPER_SDK is the folder with FMWrapper.framework). The
# AddressBook framework is linked weakly: the plug-in starts without loading it.

target_compile_options(velocard_plugin PRIVATE -fno-objc-arc -Wno-deprecated-declarations)
target_include_directories(velocard_plugin PUBLIC "${PROJECT_SOURCE_DIR}/sdk")

set(exports "${CMAKE_CURRENT_SOURCE_DIR}/Velocard.exp")
add_library(velocard MODULE ${resources}/Info.plist ${resources}/English.lproj/KORUFMPlugin.strings)
target_link_libraries(velocard PRIVATE velocard_plugin velocard_settings "-weak_framework AddressBook"
  "-framework CoreFoundation")
if(EXISTS "${FMWRAPPER_SDK}/FMWrapper.framework")
  target_link_libraries(velocard PRIVATE "-F${FMWRAPPER_SDK}" "-framework FMWrapper")
else()
  # Without the framework at hand the host itself gives its functions when it loads the plug-in.
  target_link_options(velocard PRIVATE LINKER:-undefined,dynamic_lookup)
endif()
target_link_options(velocard PRIVATE "LINKER:-exported_symbols_list,${exports}")
set_target_properties(velocard PROPERTIES
  BUNDLE ON BUNDLE_EXTENSION fmplugin OUTPUT_NAME Velocard LINKER_LANGUAGE OBJCXX
  MACOSX_BUNDLE_INFO_PLIST "${resources}/Info.plist" LINK_DEPENDS "${exports}")
set_source_files_properties(${resources}/English.lproj/KORUFMPlugin.strings PROPERTIES
  MACOSX_PACKAGE_LOCATION Resources/English.lproj)
