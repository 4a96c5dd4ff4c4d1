# Installs the library as a CMake package and for pkg-config.

include(CMakePackageConfigHelpers)

set(VLBASE_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/VLBase")

install(TARGETS VLBase
    EXPORT VLBaseTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILE_SET generated_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT VLBaseTargets NAMESPACE VLBase:: DESTINATION "${VLBASE_PACKAGE_DIR}")

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/VLBaseConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/VLBaseConfig.cmake"
    INSTALL_DESTINATION "${VLBASE_PACKAGE_DIR}")
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/VLBaseConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/VLBaseConfig.cmake"
    "${PROJECT_BINARY_DIR}/VLBaseConfigVersion.cmake"
    DESTINATION "${VLBASE_PACKAGE_DIR}")

configure_file(
    "${PROJECT_SOURCE_DIR}/cmake/VLBase.pc.in"
    "${PROJECT_BINARY_DIR}/VLBase.pc"
    @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/VLBase.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
