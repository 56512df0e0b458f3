# Installs the build into a fresh prefix, builds a downstream project against
# the installed package and runs it.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
  RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
foreach(required include/lumo/lumo.h include/lumo/registries.h lib/cmake/Lumo/LumoConfig.cmake
                 lib/cmake/Lumo/LumoConfigVersion.cmake lib/pkgconfig/lumo.pc share/lumo/themes/default/images.json
                 share/lumo/themes/default/images/icon_information.png
                 include/lumo/qtsingleapplication/QtSingleApplication include/lumo/qtsingleapplication/qtlockedfile.h
                 share/lumo/themes/dark/images.json bin/lumo-theme-check)
  if(NOT EXISTS ${prefix}/${required})
    message(FATAL_ERROR "installed package lacks ${required}")
  endif()
endforeach()
# The installed checker runs from the prefix and passes both installed themes.
foreach(theme default dark)
  execute_process(COMMAND ${prefix}/bin/lumo-theme-check ${prefix}/share/lumo/themes/${theme} RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "lumo-theme-check failed on the installed ${theme} theme: ${rc}")
  endif()
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "configuring the downstream project failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "building the downstream project failed")
endif()
execute_process(COMMAND ${WORK_DIR}/build/downstream ${WORK_DIR}/data
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
message(STATUS "${out}${err}")
if(NOT rc EQUAL 0 OR NOT out MATCHES "downstream ok")
  message(FATAL_ERROR "the downstream program failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/build/singleapp_driver ${WORK_DIR}/build ${WORK_DIR}/singleapp
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
message(STATUS "${out}${err}")
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the single-instance clients failed: ${rc}")
endif()

# The pkg-config file must serve a plain compiler invocation as well.
find_program(PKG_CONFIG pkg-config)
find_program(CXX_COMPILER NAMES c++ g++)
if(PKG_CONFIG AND CXX_COMPILER)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs lumo RESULT_VARIABLE rc OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know lumo")
  endif()
  execute_process(COMMAND ${PKG_CONFIG} --variable=themedir lumo OUTPUT_VARIABLE themedir OUTPUT_STRIP_TRAILING_WHITESPACE)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  execute_process(COMMAND ${CXX_COMPILER} -std=c++17 -fPIC ${SOURCE_DIR}/main.cpp ${flags} -Wl,-rpath,${prefix}/lib
                          "-DDOWNSTREAM_THEME_DIR=\"${themedir}\""
                          -o ${WORK_DIR}/downstream-pc RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "compiling with the pkg-config flags failed")
  endif()
  execute_process(COMMAND ${WORK_DIR}/downstream-pc ${WORK_DIR}/data-pc
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT out MATCHES "downstream ok")
    message(FATAL_ERROR "the pkg-config built program failed: ${rc}\n${out}${err}")
  endif()
endif()
