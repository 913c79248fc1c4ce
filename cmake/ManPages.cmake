# The pages of docs/man, where there is scdoc to make them with.
include(GNUInstallDirs)
find_program(KESTRAIL_SCDOC scdoc)
mark_as_advanced(KESTRAIL_SCDOC)
if(NOT KESTRAIL_SCDOC)
  message(STATUS "Without scdoc there will be no man page")
endif()

function(kestrail_man_page name)
  if(NOT KESTRAIL_SCDOC)
    return()
  endif()
  set(source ${PROJECT_SOURCE_DIR}/docs/man/${name}.scd)
  set(page ${PROJECT_BINARY_DIR}/man/${name})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/man)
  add_custom_command(
    OUTPUT ${page}
    COMMAND ${KESTRAIL_SCDOC} < ${source} > ${page}
    DEPENDS ${source})
  add_custom_target(man_${name} ALL DEPENDS ${page})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
