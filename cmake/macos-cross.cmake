# A tool chain that builds the plug-in for macOS on another system, with clang, lld and LLVM's binary tools. The
# environment variable MACOS_SDK, or the cache variable of the same name, is the folder of a macOS SDK.
# CMAKE_OSX_ARCHITECTURES (several, separated by semicolons, make one universal plug-in) says for which machines.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_OSX_ARCHITECTURES x86_64 CACHE STRING "x86_64, arm64")

# Trial projects of CMake's own are configured with this file, too, and need to know as well.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SDK)
# An empty value may be left in the cache by a configuration that had no SDK.
if(NOT MACOS_SDK)
  set(MACOS_SDK "$ENV{MACOS_SDK}" CACHE PATH "The folder of a macOS SDK" FORCE)
endif()
if(NOT EXISTS "${MACOS_SDK}/SDKSettings.json" AND NOT EXISTS "${MACOS_SDK}/SDKSettings.plist")
  message(FATAL_ERROR "MACOS_SDK must be the folder of a macOS SDK (with its SDKSettings); it is \"${MACOS_SDK}\"")
endif()
set(CMAKE_OSX_SYSROOT "${MACOS_SDK}" CACHE PATH "" FORCE)

find_program(MACOS_CLANG clang REQUIRED)
find_program(MACOS_CLANGXX clang++ REQUIRED)

# LLVM's binary tools understand Mach-O. Those that belong to clang stand where it looks for them itself.
function(find_llvm_tool variable name)
  execute_process(COMMAND "${MACOS_CLANG}" -print-prog-name=${name} OUTPUT_VARIABLE path
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  find_program(${variable} "${path}" REQUIRED)
endfunction()
find_llvm_tool(CMAKE_AR llvm-ar)
find_llvm_tool(CMAKE_RANLIB llvm-ranlib)
find_llvm_tool(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool)
find_llvm_tool(CMAKE_OTOOL llvm-otool)
find_llvm_tool(MACOS_LIPO llvm-lipo)

# To join several architectures, clang calls "lipo", which it looks for in the folders that -B names.
set(clang_tools "${CMAKE_BINARY_DIR}/clang-tools")
file(MAKE_DIRECTORY "${clang_tools}")
file(CREATE_LINK "${MACOS_LIPO}" "${clang_tools}/lipo" SYMBOLIC)

# The target is that of the first architecture; clang's -arch options make the others of it.
list(GET CMAKE_OSX_ARCHITECTURES 0 first_architecture)
foreach(language C OBJC CXX OBJCXX)
  set(CMAKE_${language}_COMPILER "${MACOS_CLANG}")
  set(CMAKE_${language}_COMPILER_TARGET "${first_architecture}-apple-macos")
  set(CMAKE_${language}_FLAGS_INIT "-B${clang_tools}")
endforeach()
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER "${MACOS_CLANGXX}")
  string(APPEND CMAKE_${language}_FLAGS_INIT " -stdlib=libc++")
endforeach()
# lld by itself signs what is for arm64 alone.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-adhoc_codesign")
endforeach()
# Compiling is trial enough of the compilers.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_FIND_ROOT_PATH "${MACOS_SDK}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
