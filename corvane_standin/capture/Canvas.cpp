#include "corvane_standin/capture/Canvas.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

constexpr double pi = std::numbers::pi;

void setColour(cairo_t* context, Colour colour, double opacity = 1) {
  const auto part = [colour](unsigned shift) { return (colour >> shift & 0xFF) / 255.0; };
  cairo_set_source_rgba(context, part(16), part(8), part(0), opacity);
}

void roundedPath(cairo_t* context, Rect area, double radius) {
  const double r = std::min({radius, area.width / 2, area.height / 2});
  cairo_new_sub_path(context);
  cairo_arc(context, area.right() - r, area.y + r, r, -pi / 2, 0);
  cairo_arc(context, area.right() - r, area.bottom() - r, r, 0, pi / 2);
  cairo_arc(context, area.x + r, area.bottom() - r, r, pi / 2, pi);
  cairo_arc(context, area.x + r, area.y + r, r, pi, 3 * pi / 2);
  cairo_close_path(context);
}

/// A path through the points that pairs of numbers are.
void linePath(cairo_t* context, std::span<const double> numbers) {
  cairo_new_path(context);
  for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
    cairo_line_to(context, numbers[i], numbers[i + 1]);
  }
}

void strokePath(cairo_t* context, double width) {
  cairo_set_line_width(context, width);
  cairo_stroke(context);
}

/// The shapes of a sketch, each with how many numbers it has at the least.
constexpr std::array<std::pair<char, std::size_t>, 5> shapes{
    {{'R', 5}, {'C', 3}, {'P', 6}, {'O', 4}, {'L', 5}}};

[[noreturn]] void fail(const char* reason) {
  throw std::runtime_error(std::string("the picture cannot be drawn: ") + reason);
}

}  // namespace

Canvas::Canvas(Size size, Colour ground) {
  cairo_surface_t* surface =
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width) * scale,
                                 static_cast<int>(size.height) * scale);
  context.reset(cairo_create(surface));
  cairo_surface_destroy(surface);
  cairo_scale(context.get(), scale, scale);
  cairo_set_line_cap(context.get(), CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context.get(), CAIRO_LINE_JOIN_ROUND);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_set_font_options(context.get(), options);
  cairo_font_options_destroy(options);
  fill({0, 0, size.width, size.height}, ground);
}

void Canvas::fill(Rect area, Colour colour, double radius, double opacity) {
  setColour(context.get(), colour, opacity);
  roundedPath(context.get(), area, radius);
  cairo_fill(context.get());
}

void Canvas::circle(Point centre, double radius, Colour colour, double opacity) {
  fill({centre.x - radius, centre.y - radius, 2 * radius, 2 * radius}, colour, radius, opacity);
}

void Canvas::sketch(Point origin, double unit, std::string_view sketched, Colour colour) {
  cairo_save(context.get());
  cairo_translate(context.get(), origin.x, origin.y);
  cairo_scale(context.get(), unit, unit);
  setColour(context.get(), colour);
  const std::string text(sketched);
  std::vector<double> numbers;
  for (const char* at = text.c_str(); *at;) {
    const char shape = *at++;
    char* end = nullptr;
    if (shape == '#') {
      setColour(context.get(), static_cast<Colour>(std::strtoul(at, &end, 16)));
      at = end;
    } else if (shape != ' ') {
      numbers.clear();
      for (double number = std::strtod(at, &end); end != at; number = std::strtod(at, &end)) {
        numbers.push_back(number);
        at = end;
      }
      drawShape(shape, numbers);
    }
  }
  cairo_restore(context.get());
}

void Canvas::drawShape(char shape, std::span<const double> n) {
  cairo_t* const to = context.get();
  const auto* const known = std::ranges::find(shapes, shape, &std::pair<char, std::size_t>::first);
  if (known == shapes.end() || n.size() < known->second) {
    throw std::logic_error(std::string("a sketch has no shape ") + shape + " of these numbers");
  }
  switch (shape) {
    case 'R':
      roundedPath(to, {n[0], n[1], n[2], n[3]}, n[4]);
      return cairo_fill(to);
    case 'C':
      cairo_arc(to, n[0], n[1], n[2], 0, 2 * pi);
      return cairo_fill(to);
    case 'P':
      linePath(to, n);
      return cairo_fill(to);
    case 'O':
      cairo_new_path(to);
      cairo_arc(to, n[0], n[1], n[2], 0, 2 * pi);
      return strokePath(to, n[3]);
    case 'L':
      linePath(to, n.subspan(1));
      return strokePath(to, n[0]);
    default:
      return;
  }
}

void Canvas::select(Font font) const {
  cairo_select_font_face(
      context.get(), "sans", CAIRO_FONT_SLANT_NORMAL,
      font.weight == Font::Weight::bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  // Sans serif fonts of systems without one for phones run wide.
  constexpr double narrowing = 0.92;
  cairo_set_font_size(context.get(), font.size * narrowing);
}

void Canvas::write(Rect area, std::string_view text, Font font, Colour colour, Align align) {
  const std::string shown = cut(text, font, area.width);
  const double left = align == Align::left ? 0 : area.width - width(shown, font);
  const double baseline = area.centre().y + font.size * 0.34;
  setColour(context.get(), colour);
  select(font);
  cairo_move_to(context.get(), area.x + (align == Align::centre ? left / 2 : left), baseline);
  if (font.weight != Font::Weight::medium) return cairo_show_text(context.get(), shown.c_str());
  // The toy fonts have no weight between the two.
  cairo_text_path(context.get(), shown.c_str());
  cairo_fill_preserve(context.get());
  strokePath(context.get(), font.size * 0.022);
}

double Canvas::writeLines(Rect area, double pitch, std::string_view text, Font font, Colour colour,
                          Align align) {
  auto lines = wrapped(text, font, area.width);
  const auto most = static_cast<std::size_t>(std::max(area.height / pitch, 1.0));
  if (lines.size() > most) {
    lines.resize(most);
    lines.back() += " …";
  }
  for (const auto& each : lines) {
    write({area.x, area.y - pitch / 2, area.width, pitch}, each, font, colour, align);
    area.y += pitch;
  }
  return area.y;
}

double Canvas::width(std::string_view text, Font font) const {
  select(font);
  cairo_text_extents_t extents;
  cairo_text_extents(context.get(), toValidUtf8(text).c_str(), &extents);
  return extents.x_advance;
}

std::string Canvas::cut(std::string_view text, Font font, double space) const {
  std::string front = toValidUtf8(text);
  if (width(front, font) <= space) return front;
  while (!front.empty() && width(front + "…", font) > space) {
    while ((front.back() & 0xC0) == 0x80) front.pop_back();
    front.pop_back();
  }
  while (front.ends_with(' ')) front.pop_back();
  return front + "…";
}

std::vector<std::string> Canvas::wrapped(std::string_view text, Font font, double space) const {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find(' '), text.size());
    const std::string word(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (word.empty()) continue;
    if (!lines.empty() && width(lines.back() + " " + word, font) <= space) {
      lines.back() += " " + word;
    } else {
      lines.push_back(word);
    }
  }
  return lines;
}

std::string Canvas::png() const {
  const cairo_status_t status = cairo_status(context.get());
  if (status != CAIRO_STATUS_SUCCESS) fail(cairo_status_to_string(status));
  cairo_surface_t* const surface = cairo_get_target(context.get());
  cairo_surface_flush(surface);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(cairo_image_surface_get_width(surface));
  image.height = static_cast<png_uint_32>(cairo_image_surface_get_height(surface));
  image.format = PNG_FORMAT_BGRA;
  // Pressed for speed, unlike what cairo itself writes.
  image.flags = PNG_IMAGE_FLAG_FAST;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string bytes(size, '\0');
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0,
                                cairo_image_surface_get_data(surface),
                                cairo_image_surface_get_stride(surface), nullptr) == 0) {
    fail(image.message);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace corvane::standin

#ifdef __has_feature
#if __has_feature(address_sanitizer)
// Fontconfig keeps what it has allocated as offsets, which a search for leaks cannot follow.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions();
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
#endif
#endif
