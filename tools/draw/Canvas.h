// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace zarno {

struct Box {
    double x = 0, y = 0, width = 0, height = 0;
};

/// A picture being drawn. Colours are ARGB, lengths are in pixels, y points down.
class Canvas {
  public:
    Canvas(int width, int height);

    void fill(const Box& box, std::uint32_t colour, double radius = 0);
    void outline(const Box& box, std::uint32_t colour, double lineWidth = 1, double radius = 0);
    /// A fill that goes from one colour at the top to another at the bottom.
    void fade(const Box& box, std::uint32_t top, std::uint32_t bottom, double radius = 0);
    /// A disc that fades out towards its rim.
    void shade(double x, double y, double radius, std::uint32_t colour);
    void line(double x0, double y0, double x1, double y1, std::uint32_t colour, double lineWidth = 1);

    enum class Align { Left, Middle, Right };
    struct Lettering {
        double height = 12; ///< of the font
        std::uint32_t colour = 0xffffffff;
        bool bold = false;
        double spacing = 0; ///< between letters
    };
    /// Of the text on one line, as UTF-8. What is wider than `room` is cut, and ends with an ellipsis.
    void text(const std::string& text, double x, double baseline, const Lettering& lettering,
              Align align = Align::Left, double room = 1e9);
    /// Reads from bottom to top; begins at (baseline, y).
    void upwardText(const std::string& text, double baseline, double y, const Lettering& lettering,
                    double room);
    double widthOf(const std::string& text, const Lettering& lettering);

    std::vector<std::uint8_t> png() const;

  private:
    void path(const Box& box, double radius);
    void colour(std::uint32_t argb);
    void font(const Lettering& lettering);

    std::shared_ptr<cairo_surface_t> surface_;
    std::shared_ptr<cairo_t> cairo_;
};

/// A program that draws keeps one until no Canvas is left: gives back what the libraries hold on to for the
/// next text, the fonts above all, so that leak checks find nothing of it.
struct FontsInUse {
    FontsInUse() = default;
    ~FontsInUse();
    FontsInUse(const FontsInUse&) = delete;
    FontsInUse& operator=(const FontsInUse&) = delete;
};

} // namespace zarno
