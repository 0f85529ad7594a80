# SPDX-License-Identifier: Apache-2.0
# Flags of everything that is part of the product.

# The same arithmetic everywhere: no contraction, no reassociation, SSE2 and nothing beyond it on both machines.
add_library(zeti_flags INTERFACE)
target_compile_options(zeti_flags INTERFACE
  -Wall -Wextra -Wshadow -Wno-unknown-pragmas -msse2 -mfpmath=sse -ffp-contract=off -fno-math-errno
  -fvisibility=hidden -fno-semantic-interposition
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fvisibility-inlines-hidden>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(zeti_flags INTERFACE -mstackrealign) # callers may keep the stack at 4 bytes only
endif()

if(ZETI_SANITIZE)
  add_compile_options(-fsanitize=${ZETI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${ZETI_SANITIZE})
endif()
