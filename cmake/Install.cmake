# What `cmake --install` lays down: the libraries, the public headers, and what CMake and
# pkg-config need to find them; with `--component Programs`, the programs. The tree may be moved as
# a whole afterwards.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set_target_properties(TovoPlatform PROPERTIES EXPORT_NAME Platform)
set_target_properties(TovoFormula PROPERTIES EXPORT_NAME Formula INSTALL_RPATH "$ORIGIN")
set_target_properties(TovoJob PROPERTIES EXPORT_NAME Job INSTALL_RPATH "$ORIGIN")

install(TARGETS TovoPlatform TovoFormula TovoJob
  EXPORT TovoFormulaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development
  FILE_SET fmt_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TovoFormula)
install(EXPORT TovoFormulaTargets NAMESPACE Tovo::
  DESTINATION ${cmake_dir} COMPONENT Development)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/TovoFormulaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/TovoFormulaConfig.cmake
  INSTALL_DESTINATION ${cmake_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/package/TovoFormulaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/TovoFormulaConfig.cmake
  ${PROJECT_BINARY_DIR}/package/TovoFormulaConfigVersion.cmake
  DESTINATION ${cmake_dir} COMPONENT Development)

set(pc_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pc_dir_to_prefix ${pc_dir} ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH pc_dir_to_include ${pc_dir} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
foreach(library tovoformula tovojob)
  configure_file(
    ${CMAKE_CURRENT_LIST_DIR}/${library}.pc.in ${PROJECT_BINARY_DIR}/package/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${library}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)
endforeach()

file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
foreach(program tovo-calc tovo-edit)
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS ${program}
      RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Programs EXCLUDE_FROM_ALL)
  endif()
endforeach()
if(TARGET tovo-calc)
  install(FILES hosts/tovo_calc/tovo-calc.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tovo-calc
    COMPONENT Programs EXCLUDE_FROM_ALL)
endif()
