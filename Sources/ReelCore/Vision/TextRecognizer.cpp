#include "ReelCore/Vision/TextRecognizer.h"

#include "ReelCore/Vision/DetectedBoxes.h"

#include <stdexcept>

#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>

namespace ReelCore {

namespace {

class Tesseract : public TextRecognizer {
public:
    Tesseract() {
        if (api_.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0) {
            throw std::runtime_error("no English data");
        }
        api_.SetPageSegMode(tesseract::PSM_SPARSE_TEXT);
    }

    std::vector<TextLine> read(const StillImage& image) override {
        cv::Mat grey;
        cv::cvtColor(pixelsOf(image), grey, cv::COLOR_BGR2GRAY);
        api_.SetImage(grey.data, grey.cols, grey.rows, 1, static_cast<int>(grey.step));
        api_.SetSourceResolution(150);
        std::vector<TextLine> lines;
        if (api_.Recognize(nullptr) != 0) return lines;
        const std::unique_ptr<tesseract::ResultIterator> at(api_.GetIterator());
        if (!at) return lines;
        do {
            const std::unique_ptr<char[]> text(at->GetUTF8Text(tesseract::RIL_TEXTLINE));
            int left = 0;
            int top = 0;
            int right = 0;
            int bottom = 0;
            if (!text || !at->BoundingBox(tesseract::RIL_TEXTLINE, &left, &top, &right, &bottom))
                continue;
            lines.push_back({text.get(), static_cast<double>(top)});
        } while (at->Next(tesseract::RIL_TEXTLINE));
        return lines;
    }

private:
    tesseract::TessBaseAPI api_;
};

}  // namespace

std::unique_ptr<TextRecognizer> makeTextRecognizer() {
    return std::make_unique<Tesseract>();
}

}  // namespace ReelCore
