/* Inserted into a server under test: pgrep finds only processes that have the server's home in
 * their command line, and open starts the bundle's program itself, with the server's environment.
 * What else runs on the machine, be it the app of a developer or of another test, makes no
 * difference, and nothing is started outside of the home. */
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int spawnWithin(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const arguments[],
                       char* const environment[]) {
  const char* home = getenv("CFFIXED_USER_HOME");
  char text[4096];
  if (home && strcmp(path, "/usr/bin/pgrep") == 0) {
    snprintf(text, sizeof text, "%s.*%s", home, arguments[2]);
    char* const narrower[] = {arguments[0], arguments[1], text, NULL};
    return posix_spawn(process, path, actions, attributes, narrower, environment);
  }
  if (home && strcmp(path, "/usr/bin/open") == 0) {
    snprintf(text, sizeof text, "%s/Contents/MacOS/Corvane", arguments[1]);
    char* const program[] = {text, NULL};
    return posix_spawn(process, text, actions, attributes, program, environment);
  }
  return posix_spawn(process, path, actions, attributes, arguments, environment);
}

/* The loader calls the first in the place of the second, but not from here. */
__attribute__((used, section("__DATA,__interpose"))) static const struct {
  const void* replacement;
  const void* replaced;
} interposed = {(const void*)spawnWithin, (const void*)posix_spawn};
