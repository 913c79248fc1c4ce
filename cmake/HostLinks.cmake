# The program opens its host libraries by the names of its home platform. Where the system installs
# them under others, a folder of links stands in, which the executable finds by its RUNPATH.
# LD_LIBRARY_PATH is searched before a RUNPATH, so other libraries can still be put in their place.
#
# The build tree is laid out as what is installed, so that both have the same RUNPATH: one that is
# padded to be changed later has empty entries, which stand for the current folder.
include(GNUInstallDirs)

# The way from the programs to the libraries that are ours alone, and where those stand in the build
# tree.
file(RELATIVE_PATH KESTRAIL_PRIVATE_WAY ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_LIBDIR}/kestrail)
cmake_path(ABSOLUTE_PATH KESTRAIL_PRIVATE_WAY BASE_DIRECTORY ${PROJECT_BINARY_DIR}/bin NORMALIZE
           OUTPUT_VARIABLE KESTRAIL_PRIVATE_FOLDER)

function(kestrail_use_host_links target)
  set(bin ${PROJECT_BINARY_DIR}/bin)
  set(folder ${KESTRAIL_PRIVATE_FOLDER})
  file(MAKE_DIRECTORY ${folder})
  foreach(pair "libEGL.so libEGL.so.1" "libGLES_CM.so libGLESv1_CM.so.1"
               "libGLESv2.so libGLESv2.so.2")
    separate_arguments(pair)
    list(GET pair 0 name)
    list(GET pair 1 system_name)
    find_file(KESTRAIL_SYSTEM_${name} ${system_name} PATHS /usr/lib /usr/lib64 /lib
              PATH_SUFFIXES ${CMAKE_LIBRARY_ARCHITECTURE} REQUIRED)
    mark_as_advanced(KESTRAIL_SYSTEM_${name})
    file(CREATE_LINK ${KESTRAIL_SYSTEM_${name}} ${folder}/${name} SYMBOLIC)
    install(FILES ${folder}/${name} DESTINATION ${CMAKE_INSTALL_LIBDIR}/kestrail)
  endforeach()
  target_link_options(${target} PRIVATE -Wl,--enable-new-dtags)
  set_target_properties(
    ${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${bin} BUILD_WITH_INSTALL_RPATH ON
                         INSTALL_RPATH "$ORIGIN/${KESTRAIL_PRIVATE_WAY}")
  install(TARGETS ${target})
endfunction()
