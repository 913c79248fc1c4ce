# A Debian package: cpack -G DEB in the build folder.
set(CPACK_PACKAGE_CONTACT "Kestrail maintainers <maintainers@kestrail.example>"
    CACHE STRING "Who maintains the package")
set(CPACK_PACKAGE_DESCRIPTION
    "A trace file holds what an application asked of EGL and OpenGL ES. The
player issues the calls again on a window of its own, on the machine's
driver, and prints a line for every call.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The host libraries are opened by name, so nothing else tells that they are needed.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libegl1, libgles1, libgles2")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libgl1-mesa-dri)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianTree.cmake)
include(CPack)
