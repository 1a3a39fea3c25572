// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/draw/Canvas.h"

#include "platform/Utf8.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {
namespace {

double part(std::uint32_t argb, int shift) {
    return ((argb >> shift) & 0xFF) / 255.0;
}

void addStop(cairo_pattern_t* pattern, double offset, std::uint32_t argb) {
    cairo_pattern_add_color_stop_rgba(pattern, offset, part(argb, 16), part(argb, 8), part(argb, 0),
                                      part(argb, 24));
}

// Between the characters of a UTF-8 text.
std::vector<std::string> characters(const std::string& text) {
    std::vector<std::string> list;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80 || list.empty()) list.emplace_back();
        list.back() += c;
    }
    return list;
}

} // namespace

Canvas::Canvas(int width, int height)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), cairo_surface_destroy)
    , cairo_(cairo_create(surface_.get()), cairo_destroy) {}

void Canvas::colour(std::uint32_t argb) {
    cairo_set_source_rgba(cairo_.get(), part(argb, 16), part(argb, 8), part(argb, 0), part(argb, 24));
}

void Canvas::path(const Box& box, double radius) {
    cairo_t* c = cairo_.get();
    cairo_new_path(c);
    if (radius <= 0) return cairo_rectangle(c, box.x, box.y, box.width, box.height);
    const double r = std::min({radius, box.width / 2, box.height / 2}), quarter = std::numbers::pi / 2;
    const double right = box.x + box.width - r, bottom = box.y + box.height - r;
    cairo_arc(c, right, box.y + r, r, -quarter, 0);
    cairo_arc(c, right, bottom, r, 0, quarter);
    cairo_arc(c, box.x + r, bottom, r, quarter, 2 * quarter);
    cairo_arc(c, box.x + r, box.y + r, r, 2 * quarter, 3 * quarter);
    cairo_close_path(c);
}

void Canvas::fill(const Box& box, std::uint32_t argb, double radius) {
    path(box, radius);
    colour(argb);
    cairo_fill(cairo_.get());
}

void Canvas::outline(const Box& box, std::uint32_t argb, double lineWidth, double radius) {
    const double inset = lineWidth / 2;
    path({box.x + inset, box.y + inset, box.width - lineWidth, box.height - lineWidth}, radius);
    colour(argb);
    cairo_set_line_width(cairo_.get(), lineWidth);
    cairo_stroke(cairo_.get());
}

void Canvas::fade(const Box& box, std::uint32_t top, std::uint32_t bottom, double radius) {
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, box.y, 0, box.y + box.height);
    addStop(pattern, 0, top);
    addStop(pattern, 1, bottom);
    path(box, radius);
    cairo_set_source(cairo_.get(), pattern);
    cairo_fill(cairo_.get());
    cairo_pattern_destroy(pattern);
}

void Canvas::shade(double x, double y, double radius, std::uint32_t argb) {
    cairo_pattern_t* pattern = cairo_pattern_create_radial(x, y, 0, x, y, radius);
    addStop(pattern, 0, argb);
    addStop(pattern, 0.78, (argb & 0xFFFFFF) | (((argb >> 24) * 6 / 10) << 24));
    addStop(pattern, 1, argb & 0xFFFFFF);
    path({x - radius, y - radius, 2 * radius, 2 * radius}, radius);
    cairo_set_source(cairo_.get(), pattern);
    cairo_fill(cairo_.get());
    cairo_pattern_destroy(pattern);
}

void Canvas::line(double x0, double y0, double x1, double y1, std::uint32_t argb, double lineWidth) {
    cairo_new_path(cairo_.get());
    cairo_move_to(cairo_.get(), x0, y0);
    cairo_line_to(cairo_.get(), x1, y1);
    colour(argb);
    cairo_set_line_width(cairo_.get(), lineWidth);
    cairo_stroke(cairo_.get());
}

void Canvas::font(const Lettering& lettering) {
    cairo_select_font_face(cairo_.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           lettering.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_.get(), lettering.height);
}

double Canvas::widthOf(const std::string& text, const Lettering& lettering) {
    font(lettering);
    cairo_text_extents_t extents;
    double width = 0;
    for (const std::string& character : characters(text)) {
        cairo_text_extents(cairo_.get(), character.c_str(), &extents);
        width += extents.x_advance + lettering.spacing;
    }
    return width > 0 ? width - lettering.spacing : 0;
}

void Canvas::text(const std::string& text, double x, double baseline, const Lettering& lettering, Align align,
                  double room) {
    std::vector<std::string> letters = characters(toUtf8(text)); // cairo gives up for good on bad UTF-8
    std::string shown = toUtf8(text);
    while (widthOf(shown, lettering) > room && !letters.empty()) {
        letters.pop_back();
        shown.clear();
        for (const std::string& letter : letters)
            shown += letter;
        shown += "\u2026";
    }
    if (letters.empty()) return;
    const double width = widthOf(shown, lettering);
    double left = align == Align::Left ? x : align == Align::Right ? x - width : x - width / 2;
    colour(lettering.colour);
    cairo_text_extents_t extents;
    for (const std::string& character : characters(shown)) {
        cairo_move_to(cairo_.get(), left, baseline);
        cairo_show_text(cairo_.get(), character.c_str());
        cairo_text_extents(cairo_.get(), character.c_str(), &extents);
        left += extents.x_advance + lettering.spacing;
    }
}

void Canvas::upwardText(const std::string& text, double baseline, double y, const Lettering& lettering,
                        double room) {
    cairo_save(cairo_.get());
    cairo_translate(cairo_.get(), baseline, y);
    cairo_rotate(cairo_.get(), -std::numbers::pi / 2);
    this->text(text, 0, 0, lettering, Align::Left, room);
    cairo_restore(cairo_.get());
}

std::vector<std::uint8_t> Canvas::png() const {
    std::vector<std::uint8_t> bytes;
    cairo_surface_flush(surface_.get());
    cairo_surface_write_to_png_stream(
        surface_.get(),
        [](void* to, const unsigned char* data, unsigned count) {
            auto& list = *static_cast<std::vector<std::uint8_t>*>(to);
            list.insert(list.end(), data, data + count);
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    return bytes;
}

FontsInUse::~FontsInUse() {
    cairo_debug_reset_static_data(); // first: it holds patterns of the other
    FcFini();
}

} // namespace zarno
