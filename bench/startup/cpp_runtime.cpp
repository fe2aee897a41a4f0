// A program that needs the C++ run-time as a shared library.
#include <locale>

int main() {
  return std::locale::classic() == std::locale() ? 0 : 1;
}
