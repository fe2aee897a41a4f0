// A program that needs the JSON parser, and with it the C++ run-time, as shared libraries.
#include <simdjson.h>

int main() {
  return simdjson::get_active_implementation() ? 0 : 1;
}
