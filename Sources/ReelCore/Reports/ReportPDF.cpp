#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Reports/ReportLayout.h"
#include "ReelCore/Reports/ReportRenderer.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

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
using Attributes = std::unique_ptr<PangoAttrList, Release<pango_attr_list_unref>>;
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
        PangoContext* context = pango_layout_get_context(layout_.get());
        pango_cairo_context_set_font_options(context, exact.get());
        pango_context_set_round_glyph_positions(context, false);
        pango_layout_set_width(layout_.get(), pango_units_from_double(frameWidth));
        pango_layout_set_wrap(layout_.get(), PANGO_WRAP_WORD_CHAR);
        // A name with a line feed or in another writing direction stays in its row and column.
        pango_layout_set_single_paragraph_mode(layout_.get(), true);
        pango_layout_set_auto_dir(layout_.get(), false);
        pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
        // A path or a checksum that is broken into two lines holds no hyphen.
        const Attributes attributes(pango_attr_list_new());
        pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(false));
        pango_layout_set_attributes(layout_.get(), attributes.get());
    }

    void add(const ReportLayout::Paragraph& paragraph) {
        pango_layout_set_font_description(layout_.get(), describe(paragraph.font).get());
        std::string_view rest = paragraph.text;
        // Blanks at the end show nothing, but would break the line in front of its last word.
        rest = rest.substr(0, rest.find_last_not_of(' ') + 1);
        do {
            rest.remove_prefix(addBeginningOf(rest));
        } while (!rest.empty());
        y_ += paragraph.spacingAfter;
    }

    std::vector<std::byte> finish() {
        cairo_show_page(drawing_.get());
        cairo_surface_finish(surface_.get());
        if (cairo_status(drawing_.get()) != CAIRO_STATUS_SUCCESS ||
            cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS) {
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

    /// As much of a text as is laid out at once: a single word takes four times as long for twice
    /// its length. Any path is shorter than that.
    static std::string_view stretchOf(std::string_view text) {
        std::size_t end = std::min<std::size_t>(text.size(), 4096);
        const auto isInsideACharacter = [&] {
            return end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;
        };
        while (isInsideACharacter()) --end;
        return text.substr(0, end);
    }

    /// Puts a stretch on paper and returns how many bytes that were. Where more text follows, the
    /// stretch's last line is left to it.
    std::size_t addBeginningOf(std::string_view text) {
        const std::string_view stretch = stretchOf(text);
        pango_layout_set_text(layout_.get(), stretch.data(), static_cast<int>(stretch.size()));
        const Lines lines(pango_layout_get_iter(layout_.get()));
        const bool moreFollows = stretch.size() < text.size();
        do {
            const int start = pango_layout_iter_get_line_readonly(lines.get())->start_index;
            if (moreFollows && start > 0 && pango_layout_iter_at_last_line(lines.get())) {
                return static_cast<std::size_t>(start);
            }
            addLine(lines.get());
        } while (pango_layout_iter_next_line(lines.get()));
        return stretch.size();
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
