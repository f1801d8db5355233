# Every target of the tree is compiled with these; a warning is an error where the tests are run.
if(MSVC)
  add_compile_options(/W4 /permissive- /utf-8 /EHsc)
else()
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 reports, at -O2 and above, text + text although nothing overlaps (its bug 105651) and a
    # member with an initialiser that a lambda assigns to.
    add_compile_options(-Wno-restrict -Wno-maybe-uninitialized)
  endif()
endif()
