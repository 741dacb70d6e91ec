# What a host or a plug-in builds against: varno::interface, the headers, and varno::varno, the library with them.
include(CMakeFindDependencyMacro)
find_dependency(Qt6 6.4 COMPONENTS Core)
include(${CMAKE_CURRENT_LIST_DIR}/varno-targets.cmake)
