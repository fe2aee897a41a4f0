/* Preloaded into a server under test: of all processes of the machine it can tell only those that
 * have its home in their command line. What else runs there, be it the app of a developer or of
 * another test, makes no difference. */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

static int isCommandLine(const char* path) {
  const char* name = strrchr(path, '/');
  return strncmp(path, "/proc/", 6) == 0 && strcmp(name, "/cmdline") == 0;
}

/* Leaves the file where it begins. */
static int namesHome(int file) {
  const char* home = getenv("HOME");
  char text[PATH_MAX];
  const ssize_t length = pread(file, text, sizeof text, 0);
  return home && length > 0 && memmem(text, (size_t)length, home, strlen(home));
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const int file = (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
  if (file < 0 || !isCommandLine(path) || namesHome(file)) return file;
  close(file);
  errno = EACCES;
  return -1;
}

/* What the checking headers of the C library make of open without a mode. */
int __open_2(const char* path, int flags) {
  return open(path, flags);
}
