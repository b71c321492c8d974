# The reference target: 32-bit x86 code from the host's own compiler.
set(CMAKE_CXX_FLAGS_INIT "-m32")
