# What the package depends on, and what its windows need, which are loaded when the first one opens: a
# machine without a display does without the toolkit.
set(scratch ${CPACK_PACKAGE_DIRECTORY}/dependencies)
file(WRITE ${scratch}/debian/control "Source: fennelbright\n\nPackage: fennelbright\nArchitecture: any\n")
# It asks for files that lie in a package to be.
file(MAKE_DIRECTORY ${scratch}/debian/fennelbright/DEBIAN)
file(COPY ${CPACK_FENNELBRIGHT_PROGRAM} ${CPACK_FENNELBRIGHT_WINDOWS}
  DESTINATION ${scratch}/debian/fennelbright)
execute_process(
  COMMAND dpkg-shlibdeps -O -dDepends debian/fennelbright/fennelbright
    -dRecommends debian/fennelbright/fennelbright-windows.so
  WORKING_DIRECTORY ${scratch} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCH "shlibs:Depends=([^\n]+)" matched "${found}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS ${CMAKE_MATCH_1})
string(REGEX MATCH "shlibs:Recommends=([^\n]+)" matched "${found}")
# The typeface is found by its name when a window opens.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "${CMAKE_MATCH_1}, fonts-dejavu-extra")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS qt6-wayland)
