#include "CorvaneCore/paths/UserAccount.h"
#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

UserFolders UserFolders::current() {
  UserFolders folders;
  folders.home = absoluteFromEnvironment("HOME");
  if (folders.home.empty()) folders.home = accountHome();
  folders.applicationSupport = absoluteFromEnvironment("XDG_DATA_HOME");
  if (folders.applicationSupport.empty()) {
    folders.applicationSupport = folders.home / ".local" / "share";
  }
  return folders;
}

}  // namespace corvane
