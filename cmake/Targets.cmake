# One function per kind of target. All of them: C++17, all warnings, hidden symbols, include root at
# the top of the tree and at host/.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")  # of the sanitizers: lines for their reports, quick to build

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(RX_PLUGIN_DIR ${CMAKE_BINARY_DIR}/bin/plugins)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(RX_CCACHE ccache)
if(RX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${RX_CCACHE})
endif()

if(RX_SANITIZER)
  add_compile_options(-fsanitize=${RX_SANITIZER} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${RX_SANITIZER})
  # GCC sees uninitialised members in every std::variant that a sanitizer has instrumented.
  add_compile_options(-Wno-maybe-uninitialized)
  if(RX_SANITIZER MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# What `./run` needs, and what `./bench` needs besides, without the tests.
add_custom_target(programs)
add_custom_target(benchmarks)

function(_rx_common target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/host)
endfunction()

# The workbench's implementation of one of the host's libraries: rx_host_library(startup SOURCES ... LINK ...)
# The interfaces host/NAME/*.h belong to it; NAME_BUILD marks its own translation units.
function(rx_host_library name)
  cmake_parse_arguments(A "" "" "SOURCES;LINK" ${ARGN})
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/host/${name}/*.h)
  add_library(${name} SHARED ${A_SOURCES} ${headers})
  string(TOUPPER ${name} upper)
  target_compile_definitions(${name} PRIVATE ${upper}_BUILD)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/workbench)
  target_link_libraries(${name} PUBLIC Qt6::Core ${A_LINK})
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
  _rx_common(${name})
endfunction()

# A static library inside the product: rx_library(linkcodec SOURCES ... LINK ...)
function(rx_library name)
  cmake_parse_arguments(A "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${A_SOURCES})
  target_link_libraries(${name} PUBLIC Qt6::Core ${A_LINK})
  _rx_common(${name})
endfunction()

# A plug-in library, loaded by file name: bin/plugins/libNAME.so
function(rx_plugin name)
  cmake_parse_arguments(A "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} SHARED ${A_SOURCES})
  target_link_libraries(${name} PUBLIC Qt6::Core ${A_LINK})
  set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${RX_PLUGIN_DIR})
  _rx_common(${name})
  add_dependencies(programs ${name})
endfunction()

# A program: bin/NAME
function(rx_program name)
  cmake_parse_arguments(A "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${A_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Core ${A_LINK})
  _rx_common(${name})
  add_dependencies(programs ${name})
endfunction()

# A test program, one per subject, run by CTest on the offscreen platform:
#   rx_test(tst_tree SOURCES tst_tree.cpp LINK valueframework LABELS tsan TIMEOUT 60)
# Label `tsan` marks what also runs under the thread sanitizer, `nightly` what a plain run leaves
# out, `e2e` what starts the real programs.
function(rx_test name)
  cmake_parse_arguments(A "" "TIMEOUT" "SOURCES;LINK;LABELS;ARGS" ${ARGN})
  add_executable(${name} ${A_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Core Qt6::Test ${A_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_compile_definitions(${name} PRIVATE
    RX_BIN_DIR="${CMAKE_BINARY_DIR}/bin" RX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  _rx_common(${name})
  if(NOT A_TIMEOUT)
    set(A_TIMEOUT 120)
  endif()
  add_test(NAME ${name} COMMAND ${name} ${A_ARGS})
  if("tsan" IN_LIST A_LABELS)
    if(NOT TARGET tsan_tests)
      add_custom_target(tsan_tests)
    endif()
    add_dependencies(tsan_tests ${name})
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${A_TIMEOUT} LABELS "${A_LABELS}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=*.debug=false;LC_ALL=C.UTF-8")
endfunction()

# A measuring program: bin/bench_NAME; ./bench runs it. It prints one JSON object per figure and
# line on stdout: {"name", "value", "unit", "bound", "sense"}; sense "max" (value at most bound),
# "min" (at least) or "info" (no bound).
function(rx_benchmark name)
  cmake_parse_arguments(A "" "" "SOURCES;LINK" ${ARGN})
  add_executable(bench_${name} ${A_SOURCES})
  target_link_libraries(bench_${name} PRIVATE Qt6::Core ${A_LINK})
  set_target_properties(bench_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/benchmarks)
  target_compile_definitions(bench_${name} PRIVATE
    RX_BIN_DIR="${CMAKE_BINARY_DIR}/bin" RX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  _rx_common(bench_${name})
  add_dependencies(benchmarks bench_${name})
endfunction()
