# Warnings are errors in our own targets only; third-party headers come in as SYSTEM includes.
set(LEDGEON_WARNINGS
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
  -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override -Wimplicit-fallthrough -Wextra-semi
  -Wmissing-declarations -Wformat=2 -Wundef -Wzero-as-null-pointer-constant -Wfloat-equal
  -Wnull-dereference -Werror
  # Options structs are filled with designated initializers that name only what differs from the
  # defaults; GCC would flag every member left out.
  -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND LEDGEON_WARNINGS -Wlogical-op -Wduplicated-cond -Wduplicated-branches)
  # GCC 12 at -O3 reports "literal" + std::string as an overlapping memcpy (GCC bug 105329).
  list(APPEND LEDGEON_WARNINGS -Wno-restrict)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  list(APPEND LEDGEON_WARNINGS -Wthread-safety -Wcomma -Wloop-analysis)
endif()

function(ledgeon_target_warnings target)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${LEDGEON_WARNINGS}>)
endfunction()
