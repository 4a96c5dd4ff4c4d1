# Installs the build, builds the examples against it as a project of their own, runs the first
# one and an owner of the log, and compiles the first one once more by what pkg-config says.

function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")

set(options -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=Release)
if(TOOLCHAIN_FILE)
    list(APPEND options "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE}"
        "-DQT_MINGW_DIR=${QT_MINGW_DIR}" "-DVLBase_DIR=${prefix}/${LIBDIR}/cmake/VLBase")
else()
    list(APPEND options "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}")
endif()
if(SANITIZE)
    list(APPEND options "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
endif()
run("${CMAKE_COMMAND}" -S "${EXAMPLES_DIR}" -B "${WORK_DIR}/examples" ${options})
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/examples")

set(suffix "")
if(EMULATOR)
    # A DLL is found beside the program.
    set(suffix ".exe")
    file(COPY "${prefix}/bin/" DESTINATION "${WORK_DIR}/examples/bin")
endif()
# The program writes into the temporary directory, which is to be its own.
set(ENV{TMPDIR} "${WORK_DIR}")
run(${EMULATOR} "${WORK_DIR}/examples/bin/first${suffix}")
string(RANDOM instance)
run(${EMULATOR} "${WORK_DIR}/examples/bin/levelcounter${suffix}" 0 "package-${instance}")

find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG AND NOT EMULATOR)
    set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
    execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs VLBase
        OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    if(SANITIZE)
        list(APPEND flags "-fsanitize=${SANITIZE}")
    endif()
    run("${CXX_COMPILER}" -std=c++17 -fPIC "${EXAMPLES_DIR}/first/main.cpp"
        -o "${WORK_DIR}/first-by-pkg-config" ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")
    run("${WORK_DIR}/first-by-pkg-config")
endif()
