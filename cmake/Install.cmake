# Where an installation has things, and three functions with which rooms say what of theirs belongs to it.
#
#   bin/                       fmhost, addressbook
#   <lib>/velocard/            the libraries, private to Velocard and to programs that are built with them
#   <lib>/velocard/Velocard/   the plug-in; it finds the libraries in the folder above
#   share/                     manual pages, completions for shells, documents
#   lib/systemd/user/          the service that keeps an address book in step, for users who enable it
#   include/velocard/          Apple's headers as far as the libraries have them
#
# Components are packages: runtime, development, server (the plug-in and its libraries in the folder of FileMaker
# Server, which an installation without that component leaves alone).

include(GNUInstallDirs)
set(VELOCARD_DOCUMENTS "${CMAKE_INSTALL_DATADIR}/doc/velocard")
set(VELOCARD_LIBRARIES "${CMAKE_INSTALL_LIBDIR}/velocard")
set(VELOCARD_HEADERS "${CMAKE_INSTALL_INCLUDEDIR}/velocard")
set(VELOCARD_SERVER_EXTENSIONS "/opt/FileMaker/FileMaker Server/Database Server/Extensions" CACHE PATH
    "The folder in which FileMaker Server looks for plug-ins")

# A program: it finds the libraries wherever the whole is installed.
function(velocard_install_program target)
  file(RELATIVE_PATH libraries "/${CMAKE_INSTALL_BINDIR}" "/${VELOCARD_LIBRARIES}")
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
endfunction()

# A program's manual pages, which it writes itself, and its completions for bash, zsh and fish, for which it is asked.
function(velocard_install_manual target)
  set(folder "${PROJECT_BINARY_DIR}/man/${target}")
  add_custom_command(OUTPUT "${folder}/made" VERBATIM DEPENDS ${target} COMMENT "Writing the manual pages of ${target}"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${folder}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
    COMMAND ${target} --manual "${folder}"
    COMMAND gzip --best --no-name --recursive "${folder}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${folder}/made")
  if(NOT VELOCARD_SANITIZE) # which nobody installs
    set(all ALL)
  endif()
  add_custom_target(${target}_manual ${all} DEPENDS "${folder}/made")
  install(DIRECTORY "${folder}/" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime FILES_MATCHING PATTERN "*.gz")

  set(PROGRAM ${target})
  foreach(file IN ITEMS bash-completion/completions/${target} zsh/vendor-completions/_${target}
      fish/vendor_completions.d/${target}.fish)
    string(REGEX MATCH "^[a-z]+" shell "${file}")
    configure_file("${PROJECT_SOURCE_DIR}/tools/command_line/completion.${shell}.in"
      "${PROJECT_BINARY_DIR}/completions/${file}" @ONLY)
    cmake_path(GET file PARENT_PATH place)
    install(FILES "${PROJECT_BINARY_DIR}/completions/${file}" DESTINATION "${CMAKE_INSTALL_DATADIR}/${place}"
      COMPONENT runtime)
  endforeach()
endfunction()

# A library; with FOR_PLUGIN one that the plug-in takes along to a server.
function(velocard_install_library target)
  cmake_parse_arguments(PARSE_ARGV 1 library "FOR_PLUGIN" "" "")
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS ${target} LIBRARY DESTINATION "${VELOCARD_LIBRARIES}" COMPONENT runtime)
  if(library_FOR_PLUGIN)
    install(TARGETS ${target} LIBRARY DESTINATION "${VELOCARD_SERVER_EXTENSIONS}" COMPONENT server EXCLUDE_FROM_ALL)
  endif()
endfunction()

# The headers of a framework, given by the folder that bears its name.
function(velocard_install_headers folder)
  install(DIRECTORY "${folder}" DESTINATION "${VELOCARD_HEADERS}" COMPONENT development FILES_MATCHING PATTERN "*.h")
endfunction()

# How programs of others are built with the address book: by pkg-config and by find_package(AddressBook).
include(CMakePackageConfigHelpers)
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/AddressBook")
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG "/${pkgconfig_folder}" "/")
configure_file("${PROJECT_SOURCE_DIR}/packaging/addressbook.pc.in" "${PROJECT_BINARY_DIR}/packaging/addressbook.pc" @ONLY)
configure_package_config_file("${PROJECT_SOURCE_DIR}/packaging/AddressBookConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/packaging/AddressBookConfig.cmake" INSTALL_DESTINATION "${package_folder}"
  PATH_VARS VELOCARD_LIBRARIES VELOCARD_HEADERS)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/packaging/AddressBookConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/packaging/addressbook.pc" DESTINATION "${pkgconfig_folder}" COMPONENT development)
install(FILES "${PROJECT_BINARY_DIR}/packaging/AddressBookConfig.cmake"
              "${PROJECT_BINARY_DIR}/packaging/AddressBookConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT development)

install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${VELOCARD_DOCUMENTS}" COMPONENT runtime)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${VELOCARD_DOCUMENTS}"
  COMPONENT runtime)

# A service that users may enable for themselves; systemd looks for user units nowhere else.
install(FILES "${PROJECT_SOURCE_DIR}/packaging/addressbook-sync.service" DESTINATION lib/systemd/user COMPONENT runtime)
