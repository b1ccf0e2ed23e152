#pragma once

#include "ReelCore/Vision/TextRecognizer.h"

#include <string>
#include <vector>

namespace ReelCore {

/// A piece of text and where it stands, in pixels from the upper left corner.
struct PlacedText {
    std::string text;
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    int cell = 0;  ///< Which cell of a table it stands in; texts of two cells are never one line.
    double confidence = 100.0;  ///< In percent, of the least sure word.

    double width() const { return right - left; }
    double height() const { return bottom - top; }
};

/// Puts the words of a page together. Pure; any thread.
struct TextLayout {
    /// Words that stand side by side, as one piece each.
    static std::vector<PlacedText> segments(std::vector<PlacedText> words);

    /// True for what a slate has as the label of a field, such as "Scene" or "ROLL:", and nothing
    /// more.
    static bool isBareLabel(const std::string& text);

    /// The pieces, left before right and all of one row with the same upper edge. A bare label and
    /// the value in its cell, right of it or below it are one line. Letters in the number right
    /// behind the label of a roll, scene or take are the digits that they look like.
    static std::vector<TextLine> lines(std::vector<PlacedText> segments);
};

}  // namespace ReelCore
