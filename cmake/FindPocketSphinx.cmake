# PocketSphinx::PocketSphinx: Debian's pocketsphinx.pc names a folder that does not exist, so it is looked for here.

find_path(PocketSphinx_INCLUDE_DIR pocketsphinx.h PATH_SUFFIXES pocketsphinx)
find_path(SphinxBase_INCLUDE_DIR sphinxbase/err.h)
find_library(PocketSphinx_LIBRARY pocketsphinx)
find_library(SphinxBase_LIBRARY sphinxbase)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PocketSphinx REQUIRED_VARS
  PocketSphinx_LIBRARY PocketSphinx_INCLUDE_DIR SphinxBase_LIBRARY SphinxBase_INCLUDE_DIR)

if(PocketSphinx_FOUND AND NOT TARGET PocketSphinx::PocketSphinx)
  add_library(PocketSphinx::PocketSphinx INTERFACE IMPORTED)
  # Its headers include one another without their folder.
  set_target_properties(PocketSphinx::PocketSphinx PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES
      "${PocketSphinx_INCLUDE_DIR};${SphinxBase_INCLUDE_DIR};${SphinxBase_INCLUDE_DIR}/sphinxbase"
    INTERFACE_LINK_LIBRARIES "${PocketSphinx_LIBRARY};${SphinxBase_LIBRARY}")
endif()
