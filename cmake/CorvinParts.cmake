# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# The library's folders as object libraries: corvin_<folder>. The shared library links them all;
# a test links the ones whose internals it reaches.

add_library(corvin_flags INTERFACE)
target_compile_features(corvin_flags INTERFACE cxx_std_20)
# The order of single-precision additions is part of the results: no contraction, no fast-math.
target_compile_options(corvin_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -ffp-contract=off
  $<$<BOOL:${CORVIN_WARNINGS_AS_ERRORS}>:-Werror>)
# DSD files outgrow a 32-bit file offset.
target_compile_definitions(corvin_flags INTERFACE _FILE_OFFSET_BITS=64)
# 32-bit x86 would otherwise compute in the x87's extended precision and change the bytes.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86)$" OR
    (CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|amd64|AMD64" AND CMAKE_SIZEOF_VOID_P EQUAL 4))
  target_compile_options(corvin_flags INTERFACE -msse2 -mfpmath=sse)
endif()

find_package(Threads REQUIRED)
# Texts of tags and the wait that keeps a host's run loop alive.
set(corvin_platform_libraries "$<$<PLATFORM_ID:Darwin>:-framework CoreFoundation>")

function(corvin_add_part folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
  add_library(corvin_${folder} OBJECT ${sources})
  target_include_directories(corvin_${folder} PUBLIC
    "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  target_compile_definitions(corvin_${folder} PRIVATE CORVIN_BUILDING)
  target_link_libraries(corvin_${folder} PRIVATE corvin_flags
    PUBLIC Threads::Threads ${corvin_platform_libraries})
  set_target_properties(corvin_${folder} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  set_property(GLOBAL APPEND PROPERTY CORVIN_PARTS corvin_${folder})
endfunction()

# Links every part's objects into `target`.
function(corvin_link_parts target)
  get_property(parts GLOBAL PROPERTY CORVIN_PARTS)
  target_link_libraries(${target} PRIVATE ${parts} corvin_flags Threads::Threads
    ${corvin_platform_libraries})
endfunction()
