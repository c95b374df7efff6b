# What holds for every target: language standards, warnings, sanitizers, the ccache launcher, GNUstep's flags.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# What users get is optimised once; -O3 makes it larger, not faster.
foreach(language C CXX OBJC OBJCXX)
  set(CMAKE_${language}_FLAGS_RELEASE "-O2 -DNDEBUG")
endforeach()

# Programs in bin/, libraries in lib/, as an installation has them.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

find_program(CCACHE ccache)
if(CCACHE)
  foreach(language C CXX OBJC OBJCXX)
    set(CMAKE_${language}_COMPILER_LAUNCHER "${CCACHE}")
  endforeach()
endif()

# velocard_settings: link it PRIVATE to every target of ours. CMake 3.25 knows no standards for GCC's Objective-C and
# Objective-C++, so the options are given by hand.
add_library(velocard_settings INTERFACE)
target_compile_options(velocard_settings INTERFACE -Wall -Wextra -Werror
  "$<$<COMPILE_LANGUAGE:OBJC>:-std=gnu11>"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:-std=c++20>"
  "$<$<COMPILE_LANGUAGE:CXX>:-Wshadow;-Wnon-virtual-dtor;-Woverloaded-virtual>")
target_include_directories(velocard_settings INTERFACE "${PROJECT_SOURCE_DIR}")
if(VELOCARD_SANITIZE)
  # -g1: what a sanitizer tells has functions and lines, no variables.
  add_compile_options(-fsanitize=${VELOCARD_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
  add_link_options(-fsanitize=${VELOCARD_SANITIZE})
endif()

if(VELOCARD_COVERAGE) # atomic: threads count, too
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# What users get on Linux is hardened: writing past the end of memory, or a jump to where no function begins, ends the
# program. Sanitizers see more than this, and do not go with it. tests/security looks at the binaries.
if(NOT APPLE AND NOT VELOCARD_SANITIZE)
  include(CheckPIESupported)
  check_pie_supported()
  add_compile_options(-fstack-protector-strong -fstack-clash-protection
    "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    add_compile_options(-fcf-protection=full)
  endif()
  add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()

# All libraries tell fuzz_coverage, which is among fuzz/, what is run and what is compared. Between all that is inserted,
# GCC no longer sees what is initialized.
if(VELOCARD_FUZZ)
  add_compile_options(-O1 -fsanitize-coverage=trace-pc,trace-cmp -D_GLIBCXX_ASSERTIONS -Wno-maybe-uninitialized)
  link_libraries(fuzz_coverage)
endif()

# velocard_foundation: Foundation, from GNUstep or from Apple; for Objective-C and Objective-C++ targets.
add_library(velocard_foundation INTERFACE)
if(APPLE)
  target_link_libraries(velocard_foundation INTERFACE "-framework Foundation")
else()
  include(GNUstep)
endif()
