# fuzz_engine: what makes a door a fuzzer. libFuzzer comes with clang; it takes the coverage of GCC's programs from
# fuzz_coverage, in place of its own function for that, which only says that it is not supported.
find_program(VELOCARD_CLANG clang REQUIRED)
execute_process(COMMAND "${VELOCARD_CLANG}" -print-resource-dir OUTPUT_VARIABLE clang_folder
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(libfuzzer "${clang_folder}/lib/linux/libclang_rt.fuzzer-${CMAKE_SYSTEM_PROCESSOR}.a")
if(NOT EXISTS "${libfuzzer}")
  message(FATAL_ERROR "There is no ${libfuzzer}; install the packages of packages-fuzz.txt")
endif()
set(taken "${CMAKE_CURRENT_BINARY_DIR}/libfuzzer.a")
add_custom_command(OUTPUT "${taken}"
  COMMAND "${CMAKE_OBJCOPY}" --localize-symbol=__sanitizer_cov_trace_pc "${libfuzzer}" "${taken}"
  DEPENDS "${libfuzzer}" VERBATIM)
add_custom_target(fuzz_libfuzzer DEPENDS "${taken}")

add_library(fuzz_engine OBJECT engine/bounds.cpp)
add_dependencies(fuzz_engine fuzz_libfuzzer)
target_link_libraries(fuzz_engine PRIVATE velocard_settings)
target_link_libraries(fuzz_engine INTERFACE "${taken}" fuzz_coverage)
target_link_options(fuzz_engine INTERFACE LINKER:--wrap=LLVMFuzzerTestOneInput)
