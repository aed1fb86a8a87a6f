# What `cmake --install` puts under the prefix, and the CMake package and pkg-config files through
# which a host finds the SDK, the SDK runtime and the toolkit:
#   lib/       libhbrevisioncontrol.so (the plug-in, where the programs look for it), the SDK
#              runtime, the toolkit and the reference host's libraries, with SOVERSIONs
#   bin/       hbrc-studio, hbdepot
#   include/hbrc/sdk/, include/hbrc/qtextention/
#   lib/cmake/HbRevisionControl/   find_package(HbRevisionControl): HbRevisionControl::sdk,
#              HbRevisionControl::sdkruntime, HbRevisionControl::qtextention
#   lib/pkgconfig/                 hbrc-sdk.pc, qtextention.pc
#   share/hbrevisioncontrol/hbdepot/schemas/   the JSON Schema of each hbdepot --json listing
include(CMakePackageConfigHelpers)

set(hbrc_include_root ${CMAKE_INSTALL_INCLUDEDIR}/hbrc)
target_include_directories(hbrc_sdk INTERFACE $<INSTALL_INTERFACE:${hbrc_include_root}/sdk>)
target_include_directories(qtextention PUBLIC $<INSTALL_INTERFACE:${hbrc_include_root}>)
set_target_properties(hbrc_sdk PROPERTIES EXPORT_NAME sdk)
set_target_properties(hbrc_sdkruntime PROPERTIES EXPORT_NAME sdkruntime)

install(TARGETS hbrc_sdk hbrc_sdkruntime qtextention
  EXPORT HbRevisionControlTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/sdk/include/ DESTINATION ${hbrc_include_root}/sdk)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/framework/include/qtextention DESTINATION ${hbrc_include_root})

# The plug-in is loaded by file name, not linked: no SOVERSION, no link target.
install(TARGETS hbrevisioncontrol LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The reference host's programs and the libraries they need.
install(TARGETS hbrc_hostruntime hbrc_datamodel hbrc_depot hbrc_services hbrc_hostsession hbdepot hbrc-studio
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/HbRevisionControl)
install(EXPORT HbRevisionControlTargets NAMESPACE HbRevisionControl:: DESTINATION ${config_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/HbRevisionControlConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/HbRevisionControlConfig.cmake
  INSTALL_DESTINATION ${config_dir}
  PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/HbRevisionControlConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/HbRevisionControlConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/HbRevisionControlConfigVersion.cmake
  DESTINATION ${config_dir})

foreach(pc hbrc-sdk qtextention)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
