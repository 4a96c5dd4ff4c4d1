# Settings that every target of the project shares.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)

# One folder for all programs and libraries, so that a DLL is found beside its user.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# The folder of sources that know the system: posix/ and windows/ hold equal file names.
if(WIN32)
    set(VLBASE_PLATFORM windows)
else()
    set(VLBASE_PLATFORM posix)
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

if(VLBASE_SANITIZE)
    add_compile_options(-fsanitize=${VLBASE_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VLBASE_SANITIZE})
endif()

# Warnings, refusals of implicit 8-bit text and the other rules of our own code.
function(vlbase_configure_target target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    endif()
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_URL_CAST_FROM_STRING
        QT_NO_FOREACH
        QT_DISABLE_DEPRECATED_BEFORE=0x060400)
    if(WIN32)
        target_compile_definitions(${target} PRIVATE
            UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
    endif()
endfunction()
