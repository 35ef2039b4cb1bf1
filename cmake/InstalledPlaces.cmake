# Where `cmake --install` puts things below its prefix. The editor finds its data and its helper programs from its own
# place, so these have to be relative and the prefix may be moved.
include(GNUInstallDirs)
set(PICTOREL_INSTALL_DATA ${CMAKE_INSTALL_DATADIR}/pictorel)
set(PICTOREL_INSTALL_HELPERS ${CMAKE_INSTALL_LIBEXECDIR}/pictorel)
foreach(place CMAKE_INSTALL_BINDIR PICTOREL_INSTALL_DATA PICTOREL_INSTALL_HELPERS)
  if(IS_ABSOLUTE ${${place}})
    message(FATAL_ERROR "${place} has to be relative to the prefix: ${${place}}")
  endif()
endforeach()

# The programs that the editor starts as processes of their own (targets).
set(PICTOREL_HELPER_PROGRAMS
  pictorel_scanner
  pictorel_decoder)
