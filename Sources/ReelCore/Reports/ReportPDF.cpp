#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Reports/ReportLayout.h"
#include "ReelCore/Reports/ReportRenderer.h"

#include <memory>
#include <new>
#include <string>

#include <cairo-pdf.h>
#include <pango/pangocairo.h>

namespace ReelCore {

namespace {

// In points. US Letter with the same margin all around.
constexpr double pageWidth = 612;
constexpr double pageHeight = 792;
constexpr double margin = 48;
constexpr double frameWidth = pageWidth - 2 * margin;
constexpr double frameHeight = pageHeight - 2 * margin;

template <auto release>
struct Release {
    template <class T>
    void operator()(T* object) const {
        release(object);
    }
};
using Surface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_destroy>>;
using Drawing = std::unique_ptr<cairo_t, Release<cairo_destroy>>;
using Layout = std::unique_ptr<PangoLayout, Release<g_object_unref>>;
using Lines = std::unique_ptr<PangoLayoutIter, Release<pango_layout_iter_free>>;
using FontDescription = std::unique_ptr<PangoFontDescription, Release<pango_font_description_free>>;
using FontOptions = std::unique_ptr<cairo_font_options_t, Release<cairo_font_options_destroy>>;

FontDescription describe(const ReportLayout::Font& font) {
    FontDescription description(pango_font_description_new());
    const bool monospaced = font.family == ReportLayout::Font::Family::monospaced;
    pango_font_description_set_family_static(description.get(),
                                             monospaced ? "Menlo,Monospace" : "Sans");
    pango_font_description_set_weight(description.get(),
                                      font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(description.get(), font.size * PANGO_SCALE);
    return description;
}

/// Lays out paragraphs one below the other and begins a page wherever the frame is full.
class Pages {
public:
    Pages()
        : surface_(
              cairo_pdf_surface_create_for_stream(&Pages::append, &bytes_, pageWidth, pageHeight)),
          drawing_(cairo_create(surface_.get())),
          layout_(pango_cairo_create_layout(drawing_.get())) {
        cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
        // Positions in a PDF are exact, so nothing is to be rounded to the pixels of a screen.
        const FontOptions exact(cairo_font_options_create());
        cairo_font_options_set_hint_metrics(exact.get(), CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(exact.get(), CAIRO_HINT_STYLE_NONE);
        pango_cairo_context_set_font_options(pango_layout_get_context(layout_.get()), exact.get());
        pango_layout_set_width(layout_.get(), pango_units_from_double(frameWidth));
        pango_layout_set_wrap(layout_.get(), PANGO_WRAP_WORD_CHAR);
        // A name with a line feed or in another writing direction stays in its row and column.
        pango_layout_set_single_paragraph_mode(layout_.get(), true);
        pango_layout_set_auto_dir(layout_.get(), false);
        pango_context_set_base_dir(pango_layout_get_context(layout_.get()), PANGO_DIRECTION_LTR);
    }

    void add(const ReportLayout::Paragraph& paragraph) {
        pango_layout_set_font_description(layout_.get(), describe(paragraph.font).get());
        pango_layout_set_text(layout_.get(), paragraph.text.data(),
                              static_cast<int>(paragraph.text.size()));
        const Lines lines(pango_layout_get_iter(layout_.get()));
        do {
            addLine(lines.get());
        } while (pango_layout_iter_next_line(lines.get()));
        y_ += paragraph.spacingAfter;
    }

    std::vector<std::byte> finish() {
        cairo_show_page(drawing_.get());
        cairo_surface_finish(surface_.get());
        if (cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS) {
            fatal("the PDF could not be made in memory");
        }
        return std::move(bytes_);
    }

private:
    static cairo_status_t append(void* closure, const unsigned char* data,
                                 unsigned int length) noexcept {
        auto& bytes = *static_cast<std::vector<std::byte>*>(closure);
        const auto* first = reinterpret_cast<const std::byte*>(data);
        try {
            bytes.insert(bytes.end(), first, first + length);
            return CAIRO_STATUS_SUCCESS;
        } catch (const std::bad_alloc&) {
            return CAIRO_STATUS_NO_MEMORY;  // No exception may pass through C.
        }
    }

    void addLine(PangoLayoutIter* line) {
        PangoRectangle extents{};
        pango_layout_iter_get_line_extents(line, nullptr, &extents);
        const double height = pango_units_to_double(extents.height);
        if (y_ > 0 && y_ + height > frameHeight) {
            cairo_show_page(drawing_.get());
            y_ = 0;
        }
        const double ascent =
            pango_units_to_double(pango_layout_iter_get_baseline(line) - extents.y);
        cairo_move_to(drawing_.get(), margin + pango_units_to_double(extents.x),
                      margin + y_ + ascent);
        pango_cairo_show_layout_line(drawing_.get(), pango_layout_iter_get_line_readonly(line));
        y_ += height;
    }

    std::vector<std::byte> bytes_;
    Surface surface_;
    Drawing drawing_;
    Layout layout_;
    double y_ = 0;  // Below the top of the frame.
};

}  // namespace

std::vector<std::byte> ReportRenderer::pdf(const Report& report) {
    Pages pages;
    for (const auto& paragraph : ReportLayout::buildAttributed(report)) pages.add(paragraph);
    return pages.finish();
}

}  // namespace ReelCore
