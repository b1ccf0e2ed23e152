#pragma once

#include "ReelCore/Reports/Report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ReelCore {

/// The text of a report as it is to stand on paper, before it is cut into pages.
struct ReportLayout {
    struct Font {
        enum class Family { system, monospaced };

        Family family = Family::system;
        bool bold = false;
        double size = 0;  ///< In points.

        bool operator==(const Font&) const = default;
    };

    struct Paragraph {
        std::string text;  ///< Well-formed UTF-8 on one line: no line feeds, tabs, NULs and such.
        Font font;
        double spacingAfter = 0;  ///< In points.

        bool operator==(const Paragraph&) const = default;
    };

    /// The width of each column in characters: that of its longest cell or its header, but at most
    /// the cap of the column's place.
    static std::vector<std::int64_t> columnWidths(const Report::Table& table);

    /// One line of a table: each cell cut or padded to its column's width (12 behind the last
    /// known column), with two blanks between. Cells that run from right to left stand between
    /// isolating marks, which count for nothing. What in a cell would break its line, move its
    /// column or end that isolation is replaced: line ends by "↵", tabs by "⇥", other controls and
    /// marks for the direction by U+FFFD.
    static std::string rowString(const std::vector<std::string>& cells,
                                 const std::vector<std::int64_t>& widths);

    /// The whole report, paragraph by paragraph. All texts are treated as those of cells are; where
    /// a fact is several names, each of them is.
    static std::vector<Paragraph> buildAttributed(const Report& report);
};

}  // namespace ReelCore
