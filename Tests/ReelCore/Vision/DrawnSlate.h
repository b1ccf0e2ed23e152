#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Vision/VisionTypes.h"

#include <string>
#include <vector>

namespace ReelCore {

/// A slate that ImageMagick draws, as it is held before the lens.
struct DrawnSlate {
    enum class Design {
        cells,    ///< A ruled table; each cell has a small label and a large value below it.
        table,    ///< A ruled table of two columns, labels and values.
        columns,  ///< Small labels over large values, without lines.
        lines     ///< "LABEL: VALUE", line by line.
    };

    std::string name;
    Design design = Design::cells;
    std::string corners;     ///< Where its corners are in 1280 by 720: upper left, and clockwise.
    std::string background;  ///< A picture's path.
    std::string font = "comic-neue/ComicNeue-Bold.otf";  ///< Of the values, below Debian's fonts.
    std::string ink = "black";
    std::string paper = "white";
    std::vector<std::string> effects = {};  ///< ImageMagick's options for the whole picture.
};

/// Draws the frame, with these fields written on it. Throws std::runtime_error with what
/// ImageMagick said if it fails.
void drawFrame(const DrawnSlate& slate, const SlateInfo& fields, const URL& picture);

/// Draws lines of plain text, black on white.
void drawText(const std::vector<std::string>& lines, const URL& picture);

/// Why the slates can't be drawn on this machine; empty where they can.
std::string slatesMissing();

}  // namespace ReelCore
