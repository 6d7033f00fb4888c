/* What zig's sources of the C++ library take for granted, and no library that zig has for WebAssembly holds. */
#include <errno.h>
#include <sys/types.h>

/* The tag that C++ exceptions bear. */
__asm__(".globl __cpp_exception\n"
        ".tagtype __cpp_exception i32\n"
        "__cpp_exception:\n");

/* Nothing here copies files. */
ssize_t sendfile(int to, int from, off_t* begin, size_t count) {
  (void)to, (void)from, (void)begin, (void)count;
  errno = ENOSYS;
  return -1;
}
