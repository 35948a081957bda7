# What every target of this tree is compiled with; nothing of it reaches those who link the library.
add_library(zk_build_options INTERFACE)
target_compile_options(zk_build_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough
  $<$<BOOL:${ZK_WARNINGS_AS_ERRORS}>:-Werror>)
# A product and a sum are two operations that round by themselves on every processor.
target_compile_options(zk_build_options INTERFACE -ffp-contract=off)
# What is built does not tell where.
target_compile_options(zk_build_options INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(ZK_CCACHE ccache)
  if(ZK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ZK_CCACHE})
  endif()
endif()

if(ZK_SANITIZE)
  target_compile_options(zk_build_options INTERFACE
    -fsanitize=${ZK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zk_build_options INTERFACE -fsanitize=${ZK_SANITIZE})
  # GCC loses track of initialisation in instrumented standard headers (its bug 105562).
  target_compile_options(zk_build_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
else()
  # A sanitizer's run time stands in the program alone, which a library must leave undefined.
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:--no-undefined>)
endif()

# A shared library of this project: version, SONAME, header search path, and where it finds its
# neighbour. Before 1.0 every minor version may be incompatible with the one before.
function(zk_configure_library target)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH $ORIGIN)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zkfoundation>)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zk_build_options>)
  # Calls within the library are direct: nobody replaces its functions by their own.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions LINKER:--version-script,${exports})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
endfunction()
