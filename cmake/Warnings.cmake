# Every target of the tree is compiled with these; a warning is an error where the tests are run.
if(MSVC)
  add_compile_options(/W4 /permissive- /utf-8 /EHsc)
else()
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 reports `"text" + Text()` at -O2 and above (its bug 105651): a copy of
    # 9223372036854775809 bytes and more that would overlap, longer than a text can be.
    add_compile_options(-Wno-restrict)
  endif()
endif()
