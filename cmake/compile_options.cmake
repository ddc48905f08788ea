# How every file of the library is compiled.

# The same bits at every vector width and with every compiler: no contraction of a * b + c, strict IEEE arithmetic.
set(QKR_ARITHMETIC_OPTIONS -ffp-contract=off -fno-math-errno)

# The compilers that we build with stay silent; what others find to say stops no one.
if(NOT QKR_SANITIZE AND "${CMAKE_CXX_COMPILER_ID}-${CMAKE_CXX_COMPILER_VERSION}" MATCHES "^(GNU-12|Clang-14|Clang-19)[.]")
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()
set(QKR_WARNINGS -Wall -Wextra -Wshadow -Wno-psabi)
# -Wno-psabi: vectors wider than the baseline's are passed by value to functions that are always inlined.
# The headers of g++ 12 for 512-bit intrinsics warn of uninitialised values that are not used; and constants that
# only a scalar routine needs are unused above the baseline.
set(QKR_KERNEL_WARNINGS -Wno-unused-const-variable
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized -Wno-uninitialized>)

# No branch across a border of 32 bytes: Skylake and its kin do not cache those in decoded form, and the speed of a
# loop would depend, by up to 15 %, on where it happens to lie.
set(QKR_BRANCH_OPTION -mbranches-within-32B-boundaries)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  string(PREPEND QKR_BRANCH_OPTION -Wa,)
endif()

set(QKR_LIBRARY_OPTIONS
    ${QKR_ARITHMETIC_OPTIONS}
    ${QKR_WARNINGS}
    -fvisibility=hidden
    -fvisibility-inlines-hidden
    -fno-exceptions
    -fno-rtti
    -fno-threadsafe-statics
    -fno-semantic-interposition
    ${QKR_BRANCH_OPTION})

# g++ schedules before register allocation only when asked: it is worth 5 to 20 % in the vector loops.
set(QKR_KERNEL_OPTIONS
    ${QKR_KERNEL_WARNINGS}
    $<$<CXX_COMPILER_ID:GNU>:-fschedule-insns -fsched-pressure>)

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1 -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g")

if(QKR_SANITIZE)
  add_compile_options(-fsanitize=${QKR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QKR_SANITIZE})
  # Checks of memory as calls: in place, g++ takes three minutes for a file of transforms.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND QKR_SANITIZE MATCHES address)
    add_compile_options(--param=asan-instrumentation-with-call-threshold=0)
  endif()
endif()
