# The warnings, as the list TARVO_WARNINGS. What is left out:
#
#   -Wuseless-cast              casts that change nothing here are needed where sizes differ
#   -Wnull-dereference, -Wstrict-overflow
#                               guess from what was inlined; GCC 12 is wrong each time
#   -Wunused-macros             Highway reads one that is set for it only where it has several targets
#   -Wmissing-declarations      Highway compiles a kernel once for each target, undeclared
#   -Wunused-const-variable=2   constants in headers are for those who need them
#   -Wpadded, -Wnoexcept, -Winline and the like say nothing about right or wrong
set(TARVO_WARNINGS
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wdouble-promotion
  -Wold-style-cast -Wcast-qual -Wzero-as-null-pointer-constant
  -Wnon-virtual-dtor -Woverloaded-virtual -Wdeprecated-copy-dtor
  # Texts that are no formats of their own are refused with it.
  -Wformat=2
  -Wundef -Wextra-semi -Wimplicit-fallthrough -Wvla
  # The same sources give the same program.
  -Wdate-time
  # libcups marks its PPD functions as deprecated; they are what a PPD filter is made of.
  -Wno-deprecated-declarations)

# Every compiler finds something new to warn of: that is for who works on the code to know, and no reason
# to leave everyone else without a program. The developers' presets turn it on.
option(TARVO_WERROR "Warnings are errors" OFF)
if(TARVO_WERROR)
  list(APPEND TARVO_WARNINGS -Werror)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND TARVO_WARNINGS
    -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wcast-align=strict -Warith-conversion
    -Wsign-promo -Wformat-signedness -Wmissing-format-attribute -Wstrict-null-sentinel
    -Wshift-overflow=2 -Wredundant-decls -Wmismatched-tags -Wsuggest-override -Wctor-dtor-privacy
    -Wcatch-value=3 -Walloca -Wtrampolines)
else()
  list(APPEND TARVO_WARNINGS -Wcast-align -Wcomma -Wunreachable-code-aggressive
    -Wheader-hygiene -Winconsistent-missing-override -Wthread-safety -Wloop-analysis)
endif()

# With another version of Clang there are others; tools/check warnings builds with it.
option(TARVO_EVERY_WARNING "Clang: all the warnings there are, but for a few" OFF)
if(TARVO_EVERY_WARNING)
  list(APPEND TARVO_WARNINGS -Weverything
    -Wno-c++98-compat -Wno-c++98-compat-pedantic  # this is C++20
    -Wno-unused-macros                            # Highway's, where it has one target
    -Wno-padded                                   # layouts that matter are asserted
    -Wno-missing-prototypes -Wno-used-but-marked-unused  # Highway's way to compile for each target
    -Wno-disabled-macro-expansion                 # the C library's sigaction
    -Wno-switch-enum                              # a default is meant to take the rest
    -Wno-float-equal                              # results are exact here, and compared so
    -Wno-tautological-value-range-compare         # quirk: size-test
    -Wno-exit-time-destructors                    # a table of the reader's, ended with the program
    -Wno-documentation-unknown-command            # "\r\n" in a comment
    -Wno-deprecated-declarations)
endif()
