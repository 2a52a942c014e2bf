# What the package depends on, and what its windows need, which are loaded when the first one opens: a
# machine without a display does without the toolkit.
set(scratch ${CPACK_PACKAGE_DIRECTORY}/dependencies)
file(WRITE ${scratch}/debian/control "Source: fennelbright\n\nPackage: fennelbright\nArchitecture: any\n")
execute_process(
  COMMAND dpkg-shlibdeps -O -dDepends ${CPACK_FENNELBRIGHT_PROGRAM}
    -dRecommends ${CPACK_FENNELBRIGHT_WINDOWS}
  WORKING_DIRECTORY ${scratch} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCH "shlibs:Depends=([^\n]+)" matched "${found}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS ${CMAKE_MATCH_1})
string(REGEX MATCH "shlibs:Recommends=([^\n]+)" matched "${found}")
# The typeface is found by its name when a window opens.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "${CMAKE_MATCH_1}, fonts-dejavu-extra")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS qt6-wayland)
