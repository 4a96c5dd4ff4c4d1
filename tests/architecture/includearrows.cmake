# Fails when a folder of the library includes one that it must not know, when code outside the
# platform folder includes a header of an operating system or asks which one it is, and when the
# inside shows: a header that is not installed lies in internal/ or platform/, no installed one
# and no program includes it.

cmake_policy(SET CMP0057 NEW)

# What each folder may include besides itself.
set(knows_platform "")
set(knows_errorhandling platform)
set(knows_os platform)
set(knows_logging platform errorhandling os)
set(knows_basetypes errorhandling)
set(knows_coord errorhandling)
set(knows_observableobserver errorhandling)
set(knows_qthelpers "")
set(knows_utilities "")

set(system_headers "^(windows|winsock2|ws2tcpip|unistd|pthread|fcntl|dlfcn|sys/|netinet/|arpa/)")
set(faults "")

file(GLOB_RECURSE sources RELATIVE "${SOURCE_DIR}/VLBase"
    "${SOURCE_DIR}/VLBase/*.h" "${SOURCE_DIR}/VLBase/*.cpp")
foreach(source IN LISTS sources)
    string(REGEX MATCH "^[^/]+" folder "${source}")
    if(NOT DEFINED knows_${folder})
        list(APPEND faults "${source}: no rule says what the folder '${folder}' may include")
        continue()
    endif()
    file(STRINGS "${SOURCE_DIR}/VLBase/${source}" lines
        REGEX "^[ \t]*#[ \t]*(include|if|ifdef|ifndef|elif)")
    foreach(line IN LISTS lines)
        if(line MATCHES "include[ \t]+<VLBase/([a-z]+)/")
            if(NOT CMAKE_MATCH_1 STREQUAL folder AND NOT CMAKE_MATCH_1 IN_LIST knows_${folder})
                list(APPEND faults "${source}: must not include from '${CMAKE_MATCH_1}'")
            endif()
        elseif(folder STREQUAL "platform")
            continue()
        elseif(line MATCHES "include[ \t]+<([^>]+)>" AND CMAKE_MATCH_1 MATCHES "${system_headers}")
            list(APPEND faults "${source}: system header <${CMAKE_MATCH_1}> outside platform")
        elseif(line MATCHES "_WIN32|Q_OS_|__linux__|__unix__|__MINGW")
            list(APPEND faults "${source}: asks for the system outside platform: ${line}")
        endif()
    endforeach()
endforeach()

# The includes of files that may know installed headers only.
set(inside "include[ \t]+[<\"](VLBase/platform/|[^>\"]*internal/)")
function(refuse file pattern what)
    file(STRINGS "${file}" lines REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS lines)
        if(line MATCHES "${pattern}")
            set(faults "${faults};${file}: includes ${what}: ${line}" PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

file(STRINGS "${INSTALLED}" installed)
foreach(header IN LISTS installed)
    refuse("${header}" "${inside}" "the inside")
endforeach()
foreach(source IN LISTS sources)
    set(file "${SOURCE_DIR}/VLBase/${source}")
    if(source MATCHES "\\.h$" AND NOT source MATCHES "^platform/|/internal/" AND
       NOT file IN_LIST installed)
        list(APPEND faults "${source}: is not installed and lies beside what is")
    elseif(source MATCHES "^platform/|/internal/" AND file IN_LIST installed)
        list(APPEND faults "${source}: is installed")
    endif()
endforeach()

# Tests and fuzzers that look inside are linked with the objects: the library has no symbol for
# them.
foreach(folder tools examples benchmarks fuzz)
    file(GLOB_RECURSE programs "${SOURCE_DIR}/${folder}/*.h" "${SOURCE_DIR}/${folder}/*.cpp")
    foreach(program IN LISTS programs)
        if(folder STREQUAL "fuzz")
            refuse("${program}" "include[ \t]+[<\"]tools/" "a program")
        else()
            refuse("${program}" "${inside}" "the inside")
        endif()
    endforeach()
endforeach()

list(LENGTH sources count)
if(count EQUAL 0)
    message(FATAL_ERROR "no sources found below ${SOURCE_DIR}/VLBase")
endif()
if(faults)
    list(REMOVE_ITEM faults "")
    list(JOIN faults "\n  " text)
    message(FATAL_ERROR "\n  ${text}")
endif()
message(STATUS "${count} files hold to the rules")
