# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# Lists the builds of each kernel: <kernel>_portable.cpp marks a kernel, every <kernel>_*.cpp beside
# it is a build of it and defines a constant of the file's name. Dropping in a file is the whole
# change: selection, tests and benchmarks walk the written list.

function(corvin_list_kernels folder)
  file(GLOB plain CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/kernels/*_portable.cpp")
  set(directory "${PROJECT_BINARY_DIR}/${folder}_kernels")
  foreach(file ${plain})
    string(REGEX REPLACE ".*/(.*)_portable\\.cpp$" "\\1" kernel "${file}")
    file(GLOB variants CONFIGURE_DEPENDS
      "${PROJECT_SOURCE_DIR}/${folder}/kernels/${kernel}_*.cpp"
      "${PROJECT_SOURCE_DIR}/${folder}/kernels/x86/${kernel}_*.cpp")
    set(list "")
    foreach(variant ${variants})
      cmake_path(GET variant STEM name)
      string(APPEND list "CORVIN_VARIANT(${name})\n")
    endforeach()
    file(CONFIGURE OUTPUT "${directory}/${kernel}_variants.inc" CONTENT "${list}" @ONLY)
  endforeach()
  target_include_directories(corvin_${folder} PUBLIC "${directory}")
endfunction()
