# Compiler settings that every target of the project shares, gathered in one interface library.

add_library(notlet_build INTERFACE)
target_include_directories(notlet_build INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_definitions(notlet_build INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER
  # Without it every object that merely sees a Qt header needs Qt at run time, the command line's too.
  QT_NO_VERSION_TAGGING
  $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
# Qt asks for position-independent code; one kind for all lets everything share a precompiled header.
target_compile_options(notlet_build INTERFACE -fPIC)
target_compile_options(notlet_build INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overflows inside std::string that are not there.
  target_compile_options(notlet_build INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()

if(NOTLET_WERROR)
  target_compile_options(notlet_build INTERFACE -Werror)
endif()

if(NOTLET_SANITIZE)
  # The sanitizers' own code leads GCC's analysis of uninitialised values astray.
  target_compile_options(notlet_build INTERFACE -Wno-maybe-uninitialized)
  target_compile_options(notlet_build INTERFACE
    -fsanitize=${NOTLET_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(notlet_build INTERFACE -fsanitize=${NOTLET_SANITIZE})
endif()

# Programs load only the libraries that they use: the command line starts without Qt.
add_link_options(-Wl,--as-needed)
find_program(NOTLET_MOLD mold)
if(NOTLET_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

find_program(NOTLET_CCACHE ccache)
if(NOTLET_CCACHE)
  # Precompiled headers carry time stamps that ccache would otherwise count as changes.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${NOTLET_CCACHE}")
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
  # Lets ccache hash a precompiled header by its content.
  target_compile_options(notlet_build INTERFACE -fpch-preprocess)
endif()
