# A tool chain that builds the plug-in for macOS on another system, with clang and lld. The environment variable
# MACOS_SDK, or the cache variable of the same name, is the folder of a macOS SDK. CMAKE_OSX_ARCHITECTURES (several,
# separated by semicolons, make one universal plug-in) and CMAKE_OSX_DEPLOYMENT_TARGET say for which machines.

set(CMAKE_SYSTEM_NAME Darwin)

# Trial projects of CMake's own are configured with this file, too, and need to know as well.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SDK)
set(MACOS_SDK "$ENV{MACOS_SDK}" CACHE PATH "The folder of a macOS SDK")
if(NOT EXISTS "${MACOS_SDK}/SDKSettings.json" AND NOT EXISTS "${MACOS_SDK}/SDKSettings.plist")
  message(FATAL_ERROR "MACOS_SDK must be the folder of a macOS SDK (with its SDKSettings); it is \"${MACOS_SDK}\"")
endif()
set(CMAKE_OSX_SYSROOT "${MACOS_SDK}" CACHE PATH "")
set(CMAKE_OSX_ARCHITECTURES x86_64 CACHE STRING "i386, x86_64, arm64")
set(CMAKE_OSX_DEPLOYMENT_TARGET 10.13 CACHE STRING "The oldest macOS that the plug-in runs on")

# The target of the first architecture; clang's -arch options make the others of it.
list(GET CMAKE_OSX_ARCHITECTURES 0 first_architecture)
set(target "${first_architecture}-apple-macos${CMAKE_OSX_DEPLOYMENT_TARGET}")
foreach(language C OBJC)
  find_program(MACOS_CLANG NAMES clang REQUIRED)
  set(CMAKE_${language}_COMPILER "${MACOS_CLANG}")
  set(CMAKE_${language}_COMPILER_TARGET "${target}")
endforeach()
foreach(language CXX OBJCXX)
  find_program(MACOS_CLANGXX NAMES clang++ REQUIRED)
  set(CMAKE_${language}_COMPILER "${MACOS_CLANGXX}")
  set(CMAKE_${language}_COMPILER_TARGET "${target}")
  set(CMAKE_${language}_FLAGS_INIT "-stdlib=libc++")
endforeach()
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld")
endforeach()

# The binary tools that understand Mach-O.
find_program(CMAKE_AR NAMES llvm-ar llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib llvm-ranlib-14 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool llvm-install-name-tool-14 REQUIRED)
find_program(CMAKE_OTOOL NAMES llvm-otool llvm-objdump llvm-objdump-14)
# Compiling is trial enough of the compilers.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_FIND_ROOT_PATH "${MACOS_SDK}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
