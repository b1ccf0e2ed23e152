#include "ReelCore/Vision/TextRecognizer.h"

#include "ReelCore/Vision/TextLayout.h"
#include "ReelCore/Vision/TextPicture.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>

extern "C" void omp_set_max_active_levels(int levels);

namespace ReelCore {

namespace {

struct Reading {
    std::vector<PlacedText> segments;
    double sureness = 0.0;    ///< Of all letters together.
    std::int64_t labels = 0;  ///< Of a slate.
};

class Tesseract : public TextRecognizer {
public:
    /// False if the data are missing.
    bool load() {
        if (api_.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0) return false;
        api_.SetVariable("debug_file", "/dev/null");  // what it notices is for no person
        return true;
    }

    std::vector<TextLine> read(const StillImage& image) override {
        omp_set_max_active_levels(0);
        Reading best;
        for (const TextPicture& picture : TextPicture::of(image)) {
            Reading reading = readingOf(picture);
            const bool isSlate = reading.labels >= labelsOfASlate;
            if (isSlate || reading.sureness > best.sureness) best = std::move(reading);
            if (isSlate) break;
        }
        return TextLayout::lines(std::move(best.segments));
    }

private:
    static constexpr std::int64_t labelsOfASlate = 3;
    static constexpr float leastConfidence = 45.0F;  ///< In percent.

    Reading readingOf(const TextPicture& picture) {
        std::vector<PlacedText> words = wordsIn(picture.grey, tesseract::PSM_SPARSE_TEXT);
        for (PlacedText& word : words)
            word.cell =
                picture.cellAt(word.left / 2 + word.right / 2, word.top / 2 + word.bottom / 2);
        Reading reading;
        reading.labels = std::ranges::count_if(words, TextLayout::isBareLabel, &PlacedText::text);
        reading.segments = TextLayout::segments(std::move(words));
        readAgain(reading.segments, picture);
        for (const PlacedText& one : reading.segments) {
            reading.sureness += static_cast<double>(one.text.size()) * one.confidence / 100.0;
        }
        return reading;
    }

    /// Looks once more, and closer, at what a cell holds beside its label.
    void readAgain(std::vector<PlacedText>& segments, const TextPicture& picture) {
        const std::vector<PlacedText> labels = [&] {
            std::vector<PlacedText> found;
            std::ranges::copy_if(segments, std::back_inserter(found), [](const PlacedText& one) {
                return TextLayout::isBareLabel(one.text);
            });
            return found;
        }();
        for (const PlacedText& label : labels) {
            const auto isBeside = [&](const PlacedText& one) {
                return one.cell == label.cell && !TextLayout::isBareLabel(one.text);
            };
            double confidence = 0.0;
            for (const PlacedText& one : segments) {
                if (isBeside(one)) confidence = std::max(confidence, one.confidence);
            }
            if (confidence > 85.0) continue;
            const auto [grey, corner] = picture.valueBeside(label);
            if (grey.empty()) continue;
            std::vector<PlacedText> words = wordsIn(grey, tesseract::PSM_SINGLE_LINE);
            for (PlacedText& word : words) {
                word.cell = label.cell;
                word.left += corner.x;
                word.right += corner.x;
                word.top += corner.y;
                word.bottom += corner.y;
            }
            std::vector<PlacedText> closer = TextLayout::segments(std::move(words));
            if (closer.empty() || closer.front().confidence <= confidence) continue;
            std::erase_if(segments, isBeside);
            segments.insert(segments.end(), closer.begin(), closer.end());
        }
    }

    std::vector<PlacedText> wordsIn(const cv::Mat& grey, tesseract::PageSegMode mode) {
        api_.SetPageSegMode(mode);
        api_.SetImage(grey.data, grey.cols, grey.rows, 1, static_cast<int>(grey.step));
        api_.SetSourceResolution(150);
        if (api_.Recognize(nullptr) != 0) return {};
        const std::unique_ptr<tesseract::ResultIterator> at(api_.GetIterator());
        if (!at || at->Empty(tesseract::RIL_WORD)) return {};
        std::vector<PlacedText> words;
        do {
            const std::unique_ptr<char[]> text(at->GetUTF8Text(tesseract::RIL_WORD));
            const float confidence = at->Confidence(tesseract::RIL_WORD);
            int left = 0;
            int top = 0;
            int right = 0;
            int bottom = 0;
            if (!text || confidence < leastConfidence || !hasLetter(text.get()) ||
                !at->BoundingBox(tesseract::RIL_WORD, &left, &top, &right, &bottom)) {
                continue;
            }
            words.push_back({text.get(), static_cast<double>(left), static_cast<double>(top),
                             static_cast<double>(right), static_cast<double>(bottom), 0,
                             static_cast<double>(confidence)});
        } while (at->Next(tesseract::RIL_WORD));
        return words;
    }

    static bool hasLetter(std::string_view word) {
        return std::ranges::any_of(word, [](unsigned char c) { return std::isalnum(c) != 0; });
    }

    tesseract::TessBaseAPI api_;
};

class BlindRecognizer : public TextRecognizer {
    std::vector<TextLine> read(const StillImage&) override { return {}; }
};

}  // namespace

std::unique_ptr<TextRecognizer> makeTextRecognizer() {
    auto tesseract = std::make_unique<Tesseract>();
    if (tesseract->load()) return tesseract;
    return std::make_unique<BlindRecognizer>();
}

}  // namespace ReelCore
