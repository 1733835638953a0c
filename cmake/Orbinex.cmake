# The few ways in which this project declares targets, so that every folder's list stays a list.

# Flags that hold for all code of ours; libraries come in as SYSTEM includes and are not judged.
add_library(orbinex_options INTERFACE)
target_compile_options(orbinex_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(orbinex_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(CMAKE_UNITY_BUILD)
  # In a unit of several files, a file's own types look as if a header had them.
  target_compile_options(orbinex_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()
if(ORBINEX_SANITIZE)
  target_compile_options(orbinex_options INTERFACE
    -fsanitize=${ORBINEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # Instrumented and hardly optimised, code is warned of for what it is not; the everyday build says what is worth a warning.
    -Wno-error)
  # Sanitizers call dlopen() in the program's place; this kind of search path holds for them too.
  target_link_options(orbinex_options INTERFACE -fsanitize=${ORBINEX_SANITIZE} -Wl,--disable-new-dtags)
endif()
if(ORBINEX_BUILD_FUZZ)
  # The code under test reports its coverage to the fuzzer, not only the fuzz target.
  target_compile_options(orbinex_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(orbinex_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# orbinex_library(NAME SOURCES file... [DEPENDS target...] [PRIVATE target...])
# One folder of src/. DEPENDS are seen by users of its headers, PRIVATE are not.
function(orbinex_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC orbinex_options ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE})
endfunction()

# orbinex_test(NAME SOURCES file... [DEPENDS target...] [LABELS label...] [TIMEOUT seconds])
# One GoogleTest program, found by ctest as NAME. Under the thread sanitizer only those labelled "threads" exist.
function(orbinex_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;DEPENDS;LABELS" ${ARGN})
  if(ORBINEX_SANITIZE STREQUAL "thread" AND NOT "threads" IN_LIST ARG_LABELS)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE orbinex_options ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
  orbinex_report(${name})
endfunction()

# orbinex_report(TEST): the test leaves a report of its cases under its own name, for scripts/test to count; two that run the
# same program at a time do not write over each other's.
function(orbinex_report test)
  set_tests_properties(${test} PROPERTIES
    ENVIRONMENT_MODIFICATION GTEST_OUTPUT=set:xml:${CMAKE_BINARY_DIR}/reports/${test}.xml)
endfunction()

# orbinex_bench(NAME SOURCES file... [DEPENDS target...]): one Google Benchmark program.
function(orbinex_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE orbinex_options ${ARG_DEPENDS} benchmark::benchmark)
endfunction()

# orbinex_fuzz(NAME SOURCES file... [DEPENDS target...]): one libFuzzer target; its seed corpus is fuzz/corpus/NAME. Without
# libFuzzer it is a test that runs every input of the corpus once.
function(orbinex_fuzz name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE orbinex_options ${ARG_DEPENDS})
  if(ORBINEX_BUILD_FUZZ)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_link_libraries(${name} PRIVATE orbinex_fuzz_replay)
    add_test(NAME ${name} COMMAND ${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
  endif()
endfunction()

# orbinex_embed_text(TARGET FILE HEADER FUNCTION): adds a source that defines std::string_view FUNCTION(), the text of FILE, as
# declared in HEADER.
function(orbinex_embed_text target file header function)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${function}.cpp)
  add_custom_command(
    OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${CMAKE_CURRENT_SOURCE_DIR}/${file} -DOUTPUT=${source} -DHEADER=${header}
      -DFUNCTION=${function} -P ${CMAKE_SOURCE_DIR}/cmake/EmbedText.cmake
    DEPENDS ${file} ${CMAKE_SOURCE_DIR}/cmake/EmbedText.cmake
    VERBATIM)
  target_sources(${target} PRIVATE ${source})
endfunction()
