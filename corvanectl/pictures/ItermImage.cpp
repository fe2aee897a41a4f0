#include "CorvaneCore/text/Base64.h"
#include "corvanectl/pictures/InlineImage.h"

namespace corvane {

std::string itermImage(std::string_view file, int rows) {
  return "\033]1337;File=inline=1;size=" + std::to_string(file.size()) +
         ";height=" + std::to_string(rows) + ";preserveAspectRatio=1:" + base64(file) + "\a";
}

}  // namespace corvane
