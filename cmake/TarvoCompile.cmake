# Compiler settings shared by every target, as the interface library tarvo_compile.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

include(${CMAKE_CURRENT_LIST_DIR}/TarvoWarnings.cmake)

add_library(tarvo_compile INTERFACE)
target_compile_options(tarvo_compile INTERFACE
  ${TARVO_WARNINGS}
  # The results of the floating-point steps are part of what the filter promises: no fused
  # multiply-add, no reassociation, on any architecture.
  -ffp-contract=off -fno-fast-math
  # Nobody replaces a function of ours at run time: without this, position-independent code is made
  # as if somebody might, and the kernels are up to a third slower.
  -fno-semantic-interposition)

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^i[3-6]86$")
  # The x87 unit would keep excess precision between the steps.
  target_compile_options(tarvo_compile INTERFACE -msse2 -mfpmath=sse)
endif()

if(TARVO_SANITIZE)
  target_compile_options(tarvo_compile INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarvo_compile INTERFACE -fsanitize=address,undefined)
endif()

if(TARVO_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "TARVO_FUZZ needs clang, whose library the fuzzers are made of")
  endif()
  # The fuzzer follows which branches an input takes, in everything that is not a library of others.
  target_compile_options(tarvo_compile INTERFACE -fsanitize=fuzzer-no-link)
endif()

include(${CMAKE_CURRENT_LIST_DIR}/TarvoHarden.cmake)
