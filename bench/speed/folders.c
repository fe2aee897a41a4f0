/* The least that looking through folders can cost: for every line that it reads it does one job and
 * answers with a line.
 *
 *   folders find ROOT           walks a tree for entries named Corvane.app
 *
 *   folders newest FOLDER       asks for the date of every file whose name ends in .json
 *
 *   folders search FOLDER ID    opens and reads every file and searches it
 *
 *   folders processes APP NAME  the same for the command line of every process, until it finds the
 *                               program NAME in the bundle APP
 *
 *   folders write FILE          writes as many bytes as the line has into a new file of that name
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static char contents[1 << 16];

static long find(const char* folder) {
  long found = 0;
  DIR* stream = opendir(folder);
  if (!stream) return 0;
  for (struct dirent* entry; (entry = readdir(stream));) {
    if (entry->d_name[0] == '.') continue;
    if (strcmp(entry->d_name, "Corvane.app") == 0) ++found;
    if (entry->d_type != DT_DIR) continue;
    char inside[4096];
    snprintf(inside, sizeof inside, "%s/%s", folder, entry->d_name);
    found += find(inside);
  }
  closedir(stream);
  return found;
}

static long newest(const char* folder) {
  long latest = 0;
  DIR* stream = opendir(folder);
  if (!stream) return 0;
  for (struct dirent* entry; (entry = readdir(stream));) {
    const size_t length = strlen(entry->d_name);
    if (length < 5 || strcmp(entry->d_name + length - 5, ".json") != 0) continue;
    struct stat status;
    if (fstatat(dirfd(stream), entry->d_name, &status, 0) != 0) continue;
    if (status.st_mtim.tv_sec > latest) latest = status.st_mtim.tv_sec;
  }
  closedir(stream);
  return latest;
}

/* Whether a file holds `text` within what `contents` has room for. */
static int holds(int folder, const char* name, const char* text) {
  const int file = openat(folder, name, O_RDONLY);
  if (file < 0) return 0;
  size_t length = 0;
  ssize_t count;
  while ((count = read(file, contents + length, sizeof contents - length)) > 0) {
    length += (size_t)count;
  }
  close(file);
  return memmem(contents, length, text, strlen(text)) != NULL;
}

static long search(const char* folder, const char* id) {
  long found = 0;
  DIR* stream = opendir(folder);
  if (!stream) return 0;
  for (struct dirent* entry; (entry = readdir(stream));) {
    if (entry->d_name[0] != '.' && holds(dirfd(stream), entry->d_name, id)) ++found;
  }
  closedir(stream);
  return found;
}

static long processes(const char* text) {
  long found = 0;
  DIR* stream = opendir("/proc");
  if (!stream) return 0;
  for (struct dirent* entry; (entry = readdir(stream));) {
    if (entry->d_name[0] < '0' || entry->d_name[0] > '9') continue;
    char name[300];
    snprintf(name, sizeof name, "%s/cmdline", entry->d_name);
    if (holds(dirfd(stream), name, text)) {
      ++found;
      break;
    }
  }
  closedir(stream);
  return found;
}

static long writeNew(const char* file, const char* text, size_t length) {
  unlink(file);
  const int created = open(file, O_WRONLY | O_CREAT | O_EXCL, 0600);
  const ssize_t count = write(created, text, length);
  close(created);
  return count;
}

static long perform(char** arguments, const char* line, size_t length) {
  if (strcmp(arguments[1], "find") == 0) return find(arguments[2]);
  if (strcmp(arguments[1], "newest") == 0) return newest(arguments[2]);
  if (strcmp(arguments[1], "search") == 0) return search(arguments[2], arguments[3]);
  if (strcmp(arguments[1], "write") == 0) return writeNew(arguments[2], line, length);
  /* The argument must not be found in this process itself. */
  static char text[256];
  snprintf(text, sizeof text, "%s/Contents/MacOS/%s", arguments[2], arguments[3]);
  return processes(text);
}

int main(int argumentCount, char** arguments) {
  if (argumentCount < 3) return 64;
  char* line = NULL;
  size_t capacity = 0;
  for (ssize_t length; (length = getline(&line, &capacity, stdin)) > 0;) {
    printf("done %ld\n", perform(arguments, line, (size_t)length));
    fflush(stdout);
  }
  return 0;
}
