# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# Lists instruction sets and the builds of each kernel. <kernel>_portable.cpp marks a kernel; every
# <kernel>_*.cpp in the folder of a processor that the compiler builds for is another build of it and
# defines a constant of the file's name. Dropping in a file is the whole change: selection, tests and
# benchmarks walk the written lists.

include(CheckCXXSourceCompiles)

# The processors that have a folder below kernels/, and what the compiler defines for each.
set(CORVIN_PROCESSORS x86)
set(CORVIN_PROCESSOR_x86 "defined(__i386__) || defined(__x86_64__)")

# bit_fir -> BitFir
function(corvin_type_name name result)
  string(REPLACE "_" ";" words "${name}")
  set(type "")
  foreach(word ${words})
    string(SUBSTRING "${word}" 0 1 first)
    string(SUBSTRING "${word}" 1 -1 rest)
    string(TOUPPER "${first}" first)
    string(APPEND type "${first}${rest}")
  endforeach()
  set(${result} "${type}" PARENT_SCOPE)
endfunction()

# For the thread sanitizer: what the kernels read and write is handed to them by code that it watches,
# and watched themselves they would take most of its time.
set(CORVIN_KERNEL_FLAGS "" CACHE STRING "More compiler flags for the kernels, after all others")

function(corvin_list_kernels folder)
  set(kernels "${PROJECT_SOURCE_DIR}/${folder}/kernels")
  set(directory "${PROJECT_BINARY_DIR}/${folder}_kernels")
  get_target_property(sources corvin_${folder} SOURCES)
  set(folders "")
  set(sets "")
  foreach(processor ${CORVIN_PROCESSORS})
    check_cxx_source_compiles("
      #if !(${CORVIN_PROCESSOR_${processor}})
      #error
      #endif
      int main() {}" CORVIN_BUILDS_FOR_${processor})
    if(CORVIN_BUILDS_FOR_${processor})
      list(APPEND folders "${kernels}/${processor}")
      string(APPEND sets "#include \"${folder}/kernels/${processor}/instruction_sets.inc\"\n")
    else()
      file(GLOB foreign CONFIGURE_DEPENDS "${kernels}/${processor}/*.cpp")
      list(REMOVE_ITEM sources ${foreign})
    endif()
  endforeach()
  file(CONFIGURE OUTPUT "${directory}/instruction_sets.inc" CONTENT "${sets}" @ONLY)

  file(GLOB references CONFIGURE_DEPENDS "${kernels}/*_portable.cpp")
  foreach(reference ${references})
    string(REGEX REPLACE ".*/(.*)_portable\\.cpp$" "\\1" kernel "${reference}")
    corvin_type_name(${kernel} Kernel)
    set(builds "${reference}")
    foreach(processor_folder ${folders})
      file(GLOB more CONFIGURE_DEPENDS "${processor_folder}/${kernel}_*.cpp")
      list(APPEND builds ${more})
    endforeach()
    set(declarations "")
    set(addresses "")
    foreach(build ${builds})
      cmake_path(GET build STEM name)
      string(APPEND declarations "extern const ${Kernel}Variant ${name};\n")
      list(APPEND addresses "&${name}")
    endforeach()
    list(JOIN addresses ", " addresses)
    configure_file("${kernels}/builds.cpp.in" "${directory}/${kernel}_builds.cpp" @ONLY)
    list(APPEND sources "${directory}/${kernel}_builds.cpp")
  endforeach()
  set_target_properties(corvin_${folder} PROPERTIES SOURCES "${sources}")
  list(FILTER sources INCLUDE REGEX "^${kernels}/")
  set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS "${CORVIN_KERNEL_FLAGS}")
  target_include_directories(corvin_${folder} PUBLIC "${directory}")
endfunction()
