# Fails when the library shows a symbol that no installed header exports, and when a function
# that one exports is missing.

cmake_policy(SET CMP0057 NEW)

# The names that headers export: classes, and functions of a namespace.
file(STRINGS "${INSTALLED}" headers)
set(declared "")
set(expected "")
foreach(header IN LISTS headers)
    file(READ "${header}" text)
    string(REGEX REPLACE "//[^\n]*" "" text "${text}")
    string(REGEX MATCHALL "VLBASE_EXPORT[^;{]*[;{]" declarations "${text}")
    foreach(declaration IN LISTS declarations)
        if(declaration MATCHES "^VLBASE_EXPORT ([A-Za-z0-9_]+)[ \n]*(final[ \n]*)?(:[^:]|[{;])")
            list(APPEND declared "${CMAKE_MATCH_1}") # class
        elseif(declaration MATCHES "([A-Za-z0-9_]+)\\(")
            list(APPEND declared "${CMAKE_MATCH_1}") # function
            list(APPEND expected "${CMAKE_MATCH_1}")
        elseif(declaration MATCHES "([A-Za-z0-9_]+)[^A-Za-z0-9_]*[;{]$")
            list(APPEND declared "${CMAKE_MATCH_1}") # variable
        endif()
    endforeach()
endforeach()
list(REMOVE_DUPLICATES declared)

if(IS_DLL)
    execute_process(COMMAND "${OBJDUMP}" -p "${LIBRARY}"
        OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE "^.*Ordinal/Name Pointer\\] Table" "" table "${table}")
    string(REGEX MATCHALL "[^ \n\t]*_Z[A-Za-z0-9_.]+" mangled "${table}")
else()
    execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}"
        OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "_Z[A-Za-z0-9_.]+" mangled "${table}")
endif()
list(JOIN mangled "\n" mangled)
string(RANDOM LENGTH 12 name)
set(list "${CMAKE_CURRENT_BINARY_DIR}/exports-${name}.txt")
file(WRITE "${list}" "${mangled}\n")
execute_process(COMMAND "${CXXFILT}" INPUT_FILE "${list}"
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE "${list}")
string(REPLACE ";" " " symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")

set(faults "")
set(seen "")
foreach(symbol IN LISTS symbols)
    # The compiler's own things of a class carry its name behind " for " or " to ".
    string(REGEX REPLACE "^.* (for|to) " "" plain "${symbol}")
    # Arguments and templates' arguments may have any names.
    string(REGEX REPLACE "[(<\\[].*$" "" plain "${plain}")
    string(REGEX REPLACE "^.* " "" plain "${plain}")
    if(plain STREQUAL "")
        continue()
    endif()
    string(REPLACE "::" ";" parts "${plain}")
    set(isDeclared FALSE)
    foreach(part IN LISTS parts)
        if(part IN_LIST declared)
            set(isDeclared TRUE)
            list(APPEND seen "${part}")
            break()
        endif()
    endforeach()
    # Inline functions of the standard library and of Qt are every library's.
    if(NOT isDeclared AND NOT plain MATCHES "^(std::|__gnu_cxx::|Q[A-Z])")
        list(APPEND faults "${symbol}: no installed header declares it")
    endif()
endforeach()

foreach(one IN LISTS expected)
    if(NOT one IN_LIST seen)
        list(APPEND faults "${one}: declared, and not in the library")
    endif()
endforeach()

list(LENGTH declared count)
if(count EQUAL 0)
    message(FATAL_ERROR "no exports found in ${INSTALLED}")
endif()
if(faults)
    list(JOIN faults "\n  " text)
    message(FATAL_ERROR "\n  ${text}")
endif()
message(STATUS "${count} names are declared and exported")
