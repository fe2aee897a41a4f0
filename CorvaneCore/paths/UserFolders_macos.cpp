#include "CorvaneCore/paths/UserAccount.h"
#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

// The app's system library asks the account and no HOME. Only the variable with which a program can
// be given another home counts there, so it has to count here.
UserFolders UserFolders::current() {
  UserFolders folders;
  folders.home = absoluteFromEnvironment("CFFIXED_USER_HOME");
  if (folders.home.empty()) folders.home = accountHome();
  folders.applicationSupport = folders.home / "Library" / "Application Support";
  return folders;
}

}  // namespace corvane
