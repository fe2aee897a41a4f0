/* Preloaded into a program under test: makes one chosen file operation below a folder fail, be cut
 * short or be the last thing the program does. Told by the environment:
 *   CORVANE_FAULT_ROOT     the folder; operations elsewhere are left alone
 *   CORVANE_FAULT_JOURNAL  a file outside of it that gets one line per operation, "open PATH"
 *   CORVANE_FAULT_AT       which operation, counted from 1; none when absent
 *   CORVANE_FAULT_AS       an errno value, "short", "kill", or "taken": another file is there first
 *   CORVANE_FAULT_REFUSED  the name of operations that all fail, as where the system lacks them
 *   CORVANE_FAULT_KINDS    "untold": folders do not tell of what kind their entries are
 *   CORVANE_FAULT_EXEC     "slow": some time passes between exec's closing of descriptors and the
 *                          moment from which the system shows the new command line
 * Starts of programs are in the journal, too, as "exec PATH", but are not counted. */
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

enum { largestDescriptor = 1024 };

static atomic_int operations;
/* Descriptors of files below the root. */
static atomic_bool watched[largestDescriptor];

static int isBelowRoot(const char* path) {
  const char* root = getenv("CORVANE_FAULT_ROOT");
  return root && path && strncmp(path, root, strlen(root)) == 0;
}

static int isWatched(int descriptor) {
  return descriptor >= 0 && descriptor < largestDescriptor && watched[descriptor];
}

static void watch(int descriptor, int below) {
  if (descriptor >= 0 && descriptor < largestDescriptor) watched[descriptor] = below;
}

/* Straight to the system, so that the journal's own operations are not counted. */
static void note(const char* operation, const char* what) {
  const char* journal = getenv("CORVANE_FAULT_JOURNAL");
  if (!journal) return;
  char line[PATH_MAX + 32];
  const int length = snprintf(line, sizeof line, "%s %s\n", operation, what);
  const int file = (int)syscall(SYS_openat, AT_FDCWD, journal, O_WRONLY | O_CREAT | O_APPEND, 0666);
  syscall(SYS_write, file, line, (size_t)length);
  syscall(SYS_close, file);
}

/* The error that the operation has to fail with; 0 to let it be, -1 to cut it short. */
static int faultOf(const char* operation, const char* what) {
  const int number = atomic_fetch_add(&operations, 1) + 1;
  note(operation, what);
  const char* refused = getenv("CORVANE_FAULT_REFUSED");
  if (refused && strcmp(refused, operation) == 0) return ENOENT;
  const char* at = getenv("CORVANE_FAULT_AT");
  const char* as = getenv("CORVANE_FAULT_AS");
  if (!at || !as || number != atoi(at)) return 0;
  if (strcmp(as, "kill") == 0) raise(SIGKILL);
  if (strcmp(as, "taken") == 0) {
    syscall(SYS_close, syscall(SYS_openat, AT_FDCWD, what, O_WRONLY | O_CREAT | O_EXCL, 0666));
    return 0;
  }
  return strcmp(as, "short") == 0 ? -1 : atoi(as);
}

static int fails(const char* operation, const char* what) {
  const int fault = faultOf(operation, what);
  if (fault <= 0) return 0;
  errno = fault;
  return 1;
}

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static int openWatched(const char* path, int flags, mode_t mode) {
  const int below = isBelowRoot(path);
  if (below && fails(flags & O_WRONLY ? "create" : "open", path)) return -1;
  const int descriptor = NEXT(open)(path, flags, mode);
  watch(descriptor, below);
  return descriptor;
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openWatched(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (folder == AT_FDCWD) return openWatched(path, flags, mode);
  const int below = isWatched(folder);
  if (below && fails("open", path)) return -1;
  const int descriptor = (int)syscall(SYS_openat, folder, path, flags, mode);
  watch(descriptor, below);
  return descriptor;
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
  if (isWatched(descriptor)) {
    const int fault = faultOf("write", "");
    if (fault < 0 && count > 1) count /= 2;
    if (fault > 0) {
      errno = fault;
      return -1;
    }
  }
  return NEXT(write)(descriptor, bytes, count);
}

ssize_t read(int descriptor, void* bytes, size_t count) {
  if (isWatched(descriptor)) {
    const int fault = faultOf("read", "");
    if (fault < 0 && count > 1) count /= 2;
    if (fault > 0) {
      errno = fault;
      return -1;
    }
  }
  return NEXT(read)(descriptor, bytes, count);
}

int close(int descriptor) {
  const int wasWatched = isWatched(descriptor);
  watch(descriptor, 0);
  const int failed = wasWatched && fails("close", "");
  const int error = errno;
  const int result = NEXT(close)(descriptor);
  if (!failed) return result;
  errno = error;
  return -1;
}

int dup(int descriptor) {
  const int copy = NEXT(dup)(descriptor);
  watch(copy, copy >= 0 && isWatched(descriptor));
  return copy;
}

/* In a forked child of a process with threads, so straight to the system. */
int execv(const char* program, char* const* arguments) {
  note("exec", program);
  const char* exec = getenv("CORVANE_FAULT_EXEC");
  if (exec && strcmp(exec, "slow") == 0) {
    const struct timespec some = {0, 300 * 1000 * 1000};
    syscall(SYS_close, STDERR_FILENO + 1);
    syscall(SYS_nanosleep, &some, NULL);
  }
  return (int)syscall(SYS_execve, program, arguments, environ);
}

int rename(const char* from, const char* to) {
  if (isBelowRoot(to) && fails("rename", to)) return -1;
  return NEXT(rename)(from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  if (isBelowRoot(to) && fails("link", to)) return -1;
  return NEXT(linkat)(fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) {
  if (isBelowRoot(path) && fails("unlink", path)) return -1;
  return NEXT(unlink)(path);
}

int remove(const char* path) {
  if (isBelowRoot(path) && fails("unlink", path)) return -1;
  return NEXT(remove)(path);
}

int mkdir(const char* path, mode_t mode) {
  if (isBelowRoot(path) && fails("mkdir", path)) return -1;
  return NEXT(mkdir)(path, mode);
}

int stat(const char* restrict path, struct stat* restrict status) {
  if (isBelowRoot(path) && fails("stat", path)) return -1;
  return NEXT(stat)(path, status);
}

int fstatat(int folder, const char* restrict path, struct stat* restrict status, int flags) {
  if (isWatched(folder) && fails("stat", path)) return -1;
  return NEXT(fstatat)(folder, path, status, flags);
}

DIR* fdopendir(int descriptor) {
  if (isWatched(descriptor) && fails("opendir", "")) return NULL;
  return NEXT(fdopendir)(descriptor);
}

struct dirent* readdir(DIR* folder) {
  if (isWatched(dirfd(folder)) && fails("readdir", "")) return NULL;
  struct dirent* entry = NEXT(readdir)(folder);
  const char* kinds = getenv("CORVANE_FAULT_KINDS");
  if (entry && kinds && strcmp(kinds, "untold") == 0) entry->d_type = DT_UNKNOWN;
  return entry;
}
