#pragma once

#include "ReelCore/Vision/StillImage.h"

#include <memory>
#include <string>
#include <vector>

namespace ReelCore {

/// A piece of text in a picture: a line of it, or a label with the value that belongs to it.
struct TextLine {
    std::string text;  ///< UTF-8.
    double top = 0.0;  ///< Its upper edge, in a measure that all lines of one reading share.
};

/// Reads what is written in pictures. One thread at a time.
class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;

    /// What can be read, in no order. May throw for a picture that it can't look at.
    virtual std::vector<TextLine> read(const StillImage& image) = 0;
};

/// Tesseract with its English data; where those are missing, one that reads nothing.
std::unique_ptr<TextRecognizer> makeTextRecognizer();

}  // namespace ReelCore
