# What makes a defect in a program harder to use against it, as Debian builds its own programs: set
# here once, on tarvo_compile, so that cmake --install and the package get the same binaries.
# tests/hardening reads it back from them.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

# Code is position-independent everywhere; this makes CMake link the programs so.
check_pie_supported(LANGUAGES CXX)

# tarvo_harden(OPTION...): those that this compiler has for this processor.
function(tarvo_harden)
  foreach(option ${ARGN})
    string(MAKE_C_IDENTIFIER "TARVO_HAS${option}" has)
    check_cxx_compiler_flag(${option} ${has})
    if(${has})
      target_compile_options(tarvo_compile INTERFACE ${option})
    endif()
  endforeach()
endfunction()

# tarvo_harden_link(OPTION...): those that this linker has.
function(tarvo_harden_link)
  foreach(option ${ARGN})
    string(MAKE_C_IDENTIFIER "TARVO_HAS${option}" has)
    check_linker_flag(CXX ${option} ${has})
    if(${has})
      target_link_options(tarvo_compile INTERFACE ${option})
    endif()
  endforeach()
endfunction()

# All that is looked up is looked up at the start, and read-only from then on; no stack holds code.
tarvo_harden_link(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

# The sanitizers watch the stack and the C library's functions themselves, and better.
string(FIND "${CMAKE_CXX_FLAGS}" "-fsanitize" sanitized)
if(NOT TARVO_SANITIZE AND sanitized EQUAL -1)
  tarvo_harden(-fstack-protector-strong -fstack-clash-protection -fcf-protection)
  # Checks of the C library's functions; it warns where nothing is optimised.
  if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
    target_compile_options(tarvo_compile INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
endif()
