# Installs the build into a fresh folder and builds a small host against it, as a stranger would.
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(consumer ${CMAKE_CURRENT_LIST_DIR}/consumer)
file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)

# find_package
run(${CMAKE_COMMAND} -S ${consumer} -B ${WORK}/consumer -G ${GENERATOR}
  -D CMAKE_CXX_COMPILER=${CXX} -D CMAKE_CXX_FLAGS=${FLAGS} -D CMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/consumer)
run(${WORK}/consumer/consumer)

# pkg-config, after the installed tree has been moved
file(RENAME ${WORK}/prefix ${WORK}/moved)
find_program(pkg_config NAMES pkg-config pkgconf REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${WORK}/moved/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${pkg_config} --cflags --libs framewright
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} ${FLAGS} ${consumer}/main.cpp -o ${WORK}/by_pkg_config ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK}/moved/${LIBDIR})
run(${WORK}/by_pkg_config)
