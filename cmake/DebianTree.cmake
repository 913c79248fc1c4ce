# Run by cpack on the tree that becomes the package: what Debian wants of one beyond what is installed.
if(NOT CPACK_GENERATOR STREQUAL DEB)
  return()
endif()
set(tree ${CPACK_TEMPORARY_DIRECTORY})

# Links from a folder of the system to another are relative.
file(GLOB links ${tree}/usr/lib*/kestrail/*.so ${tree}/usr/lib/*/kestrail/*.so)
foreach(link IN LISTS links)
  file(READ_SYMLINK ${link} target)
  if(target MATCHES ^/usr/)
    string(REPLACE ${tree} "" place ${link})
    cmake_path(GET place PARENT_PATH folder)
    file(RELATIVE_PATH target ${folder} ${target})
    file(CREATE_LINK ${target} ${link} SYMBOLIC)
  endif()
endforeach()

string(TIMESTAMP year %Y UTC)
set(documents ${tree}/usr/share/doc/${CPACK_PACKAGE_NAME})
file(WRITE ${documents}/copyright
     "Copyright (C) ${year} the authors of ${CPACK_PACKAGE_NAME}. The sources name no licence.\n")
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${documents}/changelog
     "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
     "  * Package made from the sources of this version.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  ${now}\n")
file(GLOB pages ${tree}/usr/share/man/man*/*.[0-9])
execute_process(COMMAND gzip -9nf ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
