# Install rules: the library with its headers, the CMake package itms, and itms.pc for pkg-config.
# Headers go to include/itms/<folder>/ and are included as they are here: #include "engine/itms.h".
include(CMakePackageConfigHelpers)

set(itms_cmakedir "${CMAKE_INSTALL_LIBDIR}/cmake/itms")

install(TARGETS itms
    EXPORT itms-targets
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/itms")
install(EXPORT itms-targets
    NAMESPACE itms::
    DESTINATION "${itms_cmakedir}")

# The component session: itms::session, which follows a plant, and the folders of the toolkit that it is built on.
if(TARGET itms_session)
    foreach(folder IN ITEMS text plant language netlist telemetry monitor session)
        install(TARGETS itms_${folder}
            EXPORT itms-session-targets
            ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/itms")
    endforeach()
    install(EXPORT itms-session-targets
        NAMESPACE itms::
        DESTINATION "${itms_cmakedir}")
endif()

# The program finds a shared library relative to its own location, so that the installed tree can be moved.
if(TARGET itms_program)
    if(BUILD_SHARED_LIBS AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
        file(RELATIVE_PATH itms_bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(itms_program PROPERTIES INSTALL_RPATH "$ORIGIN/${itms_bin_to_lib}")
    endif()
    install(TARGETS itms_program RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/itms-config.cmake.in"
    "${PROJECT_BINARY_DIR}/itms-config.cmake"
    INSTALL_DESTINATION "${itms_cmakedir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/itms-config-version.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/itms-config.cmake"
    "${PROJECT_BINARY_DIR}/itms-config-version.cmake"
    DESTINATION "${itms_cmakedir}")

# The installed tree can be moved as long as the folders below the prefix are relative: itms.pc then finds the
# prefix from its own location.
set(itms_pcdir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(itms_pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
    file(RELATIVE_PATH itms_pc_up "/${itms_pcdir}" "/")
    string(REGEX REPLACE "/$" "" itms_pc_up "${itms_pc_up}")
    set(itms_pc_prefix "\${pcfiledir}/${itms_pc_up}")
endif()
foreach(dir IN ITEMS LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
        set(itms_pc_${dir} "${CMAKE_INSTALL_${dir}}")
    else()
        set(itms_pc_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
    endif()
endforeach()
configure_file("${CMAKE_CURRENT_LIST_DIR}/itms.pc.in" "${PROJECT_BINARY_DIR}/itms.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/itms.pc" DESTINATION "${itms_pcdir}")
