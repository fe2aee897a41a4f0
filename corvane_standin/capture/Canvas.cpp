#include "corvane_standin/capture/Canvas.h"

#include <pango/pangocairo.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <numbers>
#include <stdexcept>
#include <vector>

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
  cairo_new_path(context);
  cairo_arc(context, area.right() - r, area.y + r, r, -pi / 2, 0);
  cairo_arc(context, area.right() - r, area.bottom() - r, r, 0, pi / 2);
  cairo_arc(context, area.x + r, area.bottom() - r, r, pi / 2, pi);
  cairo_arc(context, area.x + r, area.y + r, r, pi, 3 * pi / 2);
  cairo_close_path(context);
}

void drawShape(cairo_t* context, char shape, const std::vector<double>& numbers) {
  const auto n = [&numbers](std::size_t i) { return numbers.at(i); };
  const bool isLine = shape == 'L';
  cairo_new_path(context);
  if (shape == 'R') {
    roundedPath(context, {n(0), n(1), n(2), n(3)}, n(4));
  } else if (shape == 'C' || shape == 'O') {
    cairo_arc(context, n(0), n(1), n(2), 0, 2 * pi);
  } else if (shape == 'P' || isLine) {
    for (std::size_t i = isLine ? 1 : 0; i < numbers.size(); i += 2) {
      cairo_line_to(context, n(i), n(i + 1));
    }
  } else {
    throw std::logic_error(std::string("a sketch has no shape ") + shape);
  }
  if (!isLine && shape != 'O') return cairo_fill(context);
  cairo_set_line_width(context, n(isLine ? 0 : 3));
  cairo_stroke(context);
}

}  // namespace

Canvas::Canvas(double width, double height, Colour ground) {
  cairo_surface_t* const surface = cairo_image_surface_create(
      CAIRO_FORMAT_ARGB32, static_cast<int>(width) * scale, static_cast<int>(height) * scale);
  context.reset(cairo_create(surface));
  cairo_surface_destroy(surface);
  cairo_scale(context.get(), scale, scale);
  cairo_set_line_cap(context.get(), CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context.get(), CAIRO_LINE_JOIN_ROUND);
  fill({0, 0, width, height}, ground);
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
  for (const char* at = text.c_str(); *at;) {
    const char shape = *at++;
    char* end = nullptr;
    if (shape == '#') {
      setColour(context.get(), static_cast<Colour>(std::strtoul(at, &end, 16)));
      at = end;
    } else if (shape != ' ') {
      std::vector<double> numbers;
      for (double number = std::strtod(at, &end); end != at; number = std::strtod(at, &end)) {
        numbers.push_back(number);
        at = end;
      }
      drawShape(context.get(), shape, numbers);
    }
  }
  cairo_restore(context.get());
}

Point Canvas::write(Rect area, std::string_view text, const TextStyle& style) {
  // Sans serif fonts of systems without one for phones run wide.
  constexpr double narrowing = 0.92;
  const auto units = [](double points) { return static_cast<int>(points * PANGO_SCALE); };
  const std::string valid = toValidUtf8(text);
  PangoFontDescription* const font = pango_font_description_from_string("sans");
  pango_font_description_set_absolute_size(font, units(style.size * narrowing));
  pango_font_description_set_weight(font, style.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  PangoLayout* const layout = pango_cairo_create_layout(context.get());
  pango_context_set_round_glyph_positions(pango_layout_get_context(layout), FALSE);
  pango_layout_set_font_description(layout, font);
  pango_layout_set_text(layout, valid.data(), static_cast<int>(valid.size()));
  pango_layout_set_width(layout, units(area.width));
  pango_layout_set_height(layout, -style.lines);
  pango_layout_set_spacing(layout, units(style.size * 0.25));
  pango_layout_set_single_paragraph_mode(layout, TRUE);
  pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
  pango_layout_set_alignment(layout, static_cast<PangoAlignment>(style.align));
  PangoRectangle used;
  pango_layout_get_extents(layout, nullptr, &used);
  const Point size{pango_units_to_double(used.width), pango_units_to_double(used.height)};
  const double top = style.lines > 1 ? area.y : area.centre().y - size.y / 2;
  setColour(context.get(), style.colour);
  cairo_move_to(context.get(), area.x, top);
  pango_cairo_show_layout(context.get(), layout);
  g_object_unref(layout);
  pango_font_description_free(font);
  return size;
}

std::string Canvas::png() const {
  const cairo_status_t status = cairo_status(context.get());
  if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
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
    throw std::runtime_error(image.message);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace corvane::standin

#ifdef __has_feature
#if __has_feature(address_sanitizer)
// Fontconfig keeps what it has allocated as offsets, which a search for leaks cannot follow.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig";
}
#endif
#endif
