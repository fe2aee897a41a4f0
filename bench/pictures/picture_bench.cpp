// Makes the step picture of one screenshot again and again, and prints as JSON how long one took
// and what memory it needed:
//   picture_bench WARM_UP_FILE FILE ROUNDS [RESULT [X,Y | X,Y,END_X,END_Y]...]
// With RESULT the picture is kept there, the touches marked on it.
#include <algorithm>
#include <charconv>
#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "corvane_mcp/trace/TraceImageReader.h"

namespace {

namespace TraceImageReader = corvane::TraceImageReader;
using Touch = corvane::Touch;

Touch parseTouch(std::string_view text) {
  std::vector<double> numbers;
  const char* next = text.data();
  const char* const end = text.data() + text.size();
  while (true) {
    const auto [after, error] = std::from_chars(next, end, numbers.emplace_back());
    if (error != std::errc()) throw std::invalid_argument("not a touch: " + std::string(text));
    if (after == end) break;
    next = after + 1;
  }
  if (numbers.size() == 2) return {.x = numbers[0], .y = numbers[1]};
  if (numbers.size() == 4) {
    return {.x = numbers[0], .y = numbers[1], .endX = numbers[2], .endY = numbers[3]};
  }
  throw std::invalid_argument("not a touch: " + std::string(text));
}

std::string makePicture(const std::filesystem::path& file, const std::vector<Touch>& touches) {
  auto input = corvane::PictureInput::open(file.parent_path(), file.filename().native());
  return TraceImageReader::downscaledJPEG(input, touches);
}

/// A line of what the system says about this process's memory.
long kilobytes(std::string_view entry) {
  std::ifstream status("/proc/self/status");
  std::string word;
  long value = 0;
  while (status >> word && word != entry) {
  }
  status >> value;
  return value;
}

void run(const std::vector<std::string>& arguments) {
  const std::filesystem::path file = std::filesystem::absolute(arguments.at(1));
  const int rounds = std::stoi(arguments.at(2));
  std::vector<Touch> touches;
  for (std::size_t i = 4; i < arguments.size(); ++i) touches.push_back(parseTouch(arguments[i]));

  makePicture(std::filesystem::absolute(arguments.at(0)), {});
  const long residentBefore = kilobytes("VmRSS:");
  std::vector<double> milliseconds;
  std::string picture;
  for (int i = 0; i < rounds; ++i) {
    const auto start = std::chrono::steady_clock::now();
    picture = makePicture(file, touches);
    const auto end = std::chrono::steady_clock::now();
    milliseconds.push_back(std::chrono::duration<double, std::milli>(end - start).count());
  }
  const long peak = kilobytes("VmHWM:");
  std::cout << R"({"milliseconds":)" << *std::min_element(milliseconds.begin(), milliseconds.end())
            << R"(,"grownKilobytes":)" << peak - residentBefore << R"(,"peakKilobytes":)" << peak
            << R"(,"bytes":)" << picture.size() << "}\n";
  if (arguments.size() > 3)
    corvane::writeFileWhole(arguments[3], picture, corvane::Access::byUmask);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "picture_bench: " << error.what() << "\n";
    return 1;
  }
}
