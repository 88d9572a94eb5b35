# Compile flags and build kinds shared by everything.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# Debian's own Python is embedded, whatever other Python stands first in PATH.
set(Python3_ROOT_DIR /usr CACHE PATH "Where the embedded Python is looked for")
set(Python3_FIND_STRATEGY LOCATION)
set(Python3_FIND_VIRTUALENV STANDARD)

option(MIRK_SANITIZE "AddressSanitizer and UBSan" OFF)

find_program(MIRK_CCACHE ccache)
if(MIRK_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${MIRK_CCACHE}")
endif()
find_program(MIRK_MOLD mold)
if(MIRK_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

add_compile_options(-Wall -Wextra -Wno-unused-parameter -fno-math-errno)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # this vectorizer loses the rounding of double(float(x)) on neighbouring values
  add_compile_options(-fno-tree-slp-vectorize)
endif()
if(MIRK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=address,undefined)
endif()
