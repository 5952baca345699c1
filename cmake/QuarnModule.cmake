# Build rules that every folder shares.

add_library(quarn_options INTERFACE)
target_include_directories(quarn_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(quarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wcast-qual
  $<$<NOT:$<BOOL:${QUARN_UNITY}>>:-Wshadow> # joined files see each other's private names
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Wold-style-cast>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # gcc 12 warns of std::string's own code
  $<$<BOOL:${QUARN_WERROR}>:-Werror>)
if(QUARN_SANITIZE)
  target_compile_options(quarn_options INTERFACE -fsanitize=${QUARN_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(quarn_options INTERFACE -fsanitize=${QUARN_SANITIZE})
endif()

# quarn_module(name SOURCES … DEPENDS … PUBLIC_DEPENDS … [JOINT [ALONE …]])
# One static library for one folder. PUBLIC_DEPENDS are those that its headers include. JOINT: a unity build
# compiles many of its sources at once, but for those under ALONE, whose private names clash with others.
function(quarn_module name)
  cmake_parse_arguments(arg "JOINT" "" "SOURCES;DEPENDS;PUBLIC_DEPENDS;ALONE" ${ARGN})
  add_library(quarn_${name} STATIC ${arg_SOURCES})
  add_library(quarn::${name} ALIAS quarn_${name})
  target_link_libraries(quarn_${name} PUBLIC quarn_options ${arg_PUBLIC_DEPENDS} PRIVATE ${arg_DEPENDS})
  if(QUARN_UNITY AND arg_JOINT)
    quarn_join(quarn_${name})
    set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# quarn_join(target): lets the unity build compile many sources of a library or a test program at once.
function(quarn_join target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# quarn_program(name SOURCES … DEPENDS …): one of the programs, installed into bin.
function(quarn_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE quarn_options ${arg_DEPENDS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${QUARN_BIN_DIR})
  install(TARGETS ${name} RUNTIME)
endfunction()

# quarn_test(name SOURCES … DEPENDS … [ALONE]): one GoogleTest program for one folder of tests, its sources joined
# in a unity build. ALONE: its tests change what every process sees, so no other test runs beside them.
function(quarn_test name)
  cmake_parse_arguments(arg "ALONE" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  if(QUARN_UNITY)
    quarn_join(${name})
  endif()
  target_link_libraries(${name} PRIVATE quarn_options quarn_test_support ${arg_DEPENDS} GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    PROPERTIES TIMEOUT 120 RUN_SERIAL ${arg_ALONE})
endfunction()

# quarn_fuzz(name SOURCES … DEPENDS …): one libFuzzer target with a seed corpus in corpus/<name>.
function(quarn_fuzz name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE quarn_options ${arg_DEPENDS})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()

set(QUARN_BIN_DIR ${CMAKE_BINARY_DIR}/bin CACHE PATH "Where the built programs are put")
