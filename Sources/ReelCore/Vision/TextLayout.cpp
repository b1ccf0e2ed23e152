#include "ReelCore/Vision/TextLayout.h"

#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

namespace ReelCore {

namespace {

constexpr std::array<std::string_view, 8> labelsOfNumbers{"SCENE", "SCN",  "SC",      "TAKE",
                                                          "TK",    "ROLL", "CAMROLL", "CAMERAROLL"};
constexpr std::array<std::string_view, 15> otherLabels{
    "SCENE/TAKE",      "SC/TK", "CAM",   "DIRECTOR",   "DIR",  "CAMERA", "DP",
    "CINEMATOGRAPHER", "PROD",  "TITLE", "PRODUCTION", "SHOW", "DATE",   "FPS",
    "FRAMERATE"};

std::string lettersOf(const std::string& text) {
    std::string letters = Text::upperCased(text);
    std::erase_if(letters, [](char c) { return c == ' ' || c == '.' || c == ':' || c == '#'; });
    return letters;
}

bool isOneOf(std::span<const std::string_view> labels, const std::string& text) {
    return std::ranges::find(labels, lettersOf(text)) != labels.end();
}

/// A word as it is meant where it is a number with at most two capitals: the O in it is a 0 and the
/// I a 1. Slates leave those letters out because nobody can tell them apart.
std::string numbered(std::string word) {
    constexpr std::string_view likeZero = "Oo";
    constexpr std::string_view likeOne = "Iil";
    constexpr std::string_view digits = "0123456789";
    const auto isOf = [](std::string_view set) {
        return [set](char c) { return set.find(c) != set.npos; };
    };
    const auto number = std::ranges::count_if(word, isOf(digits));
    const auto meant =
        std::ranges::count_if(word, isOf(likeZero)) + std::ranges::count_if(word, isOf(likeOne));
    const auto others = std::ssize(word) - number - meant;
    const auto capitals = std::ranges::count_if(
        word, [](char c) { return c >= 'A' && c <= 'Z' && c != 'O' && c != 'I'; });
    const bool isPlain = others == capitals;
    if (!isPlain || number == 0 || others > 2) return word;
    std::ranges::replace_if(word, isOf(likeZero), '0');
    std::ranges::replace_if(word, isOf(likeOne), '1');
    return word;
}

/// The text with the word right behind a label of a number as it is meant.
std::string withNumbers(const std::string& text) {
    std::string result;
    std::string before;
    for (const std::string_view piece : piecesOf(text, " ")) {
        const bool isNumber = isOneOf(labelsOfNumbers, before);
        const std::string word = isNumber ? numbered(std::string(piece)) : std::string(piece);
        result += (result.empty() ? "" : " ") + word;
        if (!lettersOf(word).empty()) before = word;
    }
    return result;
}

/// How much of the lower of two pieces stands beside the other.
double besideEachOther(const PlacedText& a, const PlacedText& b) {
    const double shared = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return shared / std::min(a.height(), b.height());
}

double belowEachOther(const PlacedText& a, const PlacedText& b) {
    const double shared = std::min(a.right, b.right) - std::max(a.left, b.left);
    return shared / std::min(a.width(), b.width());
}

void append(PlacedText& piece, const PlacedText& next) {
    piece.text += " " + next.text;
    piece.left = std::min(piece.left, next.left);
    piece.top = std::min(piece.top, next.top);
    piece.right = std::max(piece.right, next.right);
    piece.bottom = std::max(piece.bottom, next.bottom);
    piece.confidence = std::min(piece.confidence, next.confidence);
}

/// How far a value is from its label; infinite for what can't be its value. What shares the label's
/// cell is nearer than anything else, and stands anywhere below if no other label is in that cell.
double distance(const PlacedText& label, const PlacedText& value, bool isAloneInCell) {
    constexpr double never = std::numeric_limits<double>::infinity();
    const double otherCell = label.cell == value.cell ? 0.0 : 1e6;
    if (besideEachOther(label, value) > 0.4 && value.left >= label.right) {
        return otherCell + value.left - label.right;
    }
    const double gap = value.top - label.bottom;
    const double reach = 3.0 * std::max(label.height(), value.height());
    const bool isBelow = gap > -0.3 * label.height() && gap < reach;
    const bool isInReach = isAloneInCell && label.cell == value.cell;
    if (!isBelow || (!isInReach && belowEachOther(label, value) < 0.3)) return never;
    return otherCell + std::max(gap, 0.0);
}

/// True if another label stands between the label and the value on its right.
bool isCutOff(const PlacedText& label, const PlacedText& value,
              const std::vector<PlacedText>& labels) {
    return besideEachOther(label, value) > 0.4 &&
           std::ranges::any_of(labels, [&](const PlacedText& other) {
               return besideEachOther(label, other) > 0.4 && other.left > label.left &&
                      other.left < value.left;
           });
}

/// Joins each bare label with the nearest value; each value goes to one label only.
void pair(std::vector<PlacedText>& segments) {
    struct Pair {
        double distance;
        std::size_t label;
        std::size_t value;
    };
    const auto values = std::stable_partition(
        segments.begin(), segments.end(),
        [](const PlacedText& one) { return TextLayout::isBareLabel(one.text); });
    const std::vector<PlacedText> labels(segments.begin(), values);
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const bool isAlone = std::ranges::count(labels, labels[i].cell, &PlacedText::cell) == 1;
        for (std::size_t j = labels.size(); j < segments.size(); ++j) {
            const double apart = distance(labels[i], segments[j], isAlone);
            if (apart == std::numeric_limits<double>::infinity()) continue;
            if (!isCutOff(labels[i], segments[j], labels)) pairs.push_back({apart, i, j});
        }
    }
    std::ranges::stable_sort(pairs, {}, &Pair::distance);
    std::vector<bool> isTaken(segments.size());
    std::vector<bool> isGone(segments.size());
    for (const auto& [apart, label, value] : pairs) {
        if (isTaken[label] || isTaken[value]) continue;
        isTaken[label] = isTaken[value] = isGone[value] = true;
        append(segments[label], segments[value]);
    }
    std::size_t at = 0;
    std::erase_if(segments, [&](const PlacedText&) { return isGone[at++]; });
}

}  // namespace

std::vector<PlacedText> TextLayout::segments(std::vector<PlacedText> words) {
    std::ranges::stable_sort(words, {}, &PlacedText::left);
    std::vector<PlacedText> segments;
    for (const PlacedText& word : words) {
        const auto last = std::ranges::find_if(segments, [&](const PlacedText& one) {
            const double gap = word.left - one.right;
            return one.cell == word.cell && besideEachOther(one, word) > 0.5 &&
                   gap < std::max(one.height(), word.height());
        });
        if (last == segments.end()) {
            segments.push_back(word);
        } else {
            append(*last, word);
        }
    }
    return segments;
}

bool TextLayout::isBareLabel(const std::string& text) {
    return isOneOf(labelsOfNumbers, text) || isOneOf(otherLabels, text);
}

std::vector<TextLine> TextLayout::lines(std::vector<PlacedText> segments) {
    pair(segments);
    std::ranges::stable_sort(segments, {}, &PlacedText::top);
    std::vector<TextLine> lines;
    for (auto row = segments.begin(); row != segments.end();) {
        const auto end = std::find_if(row, segments.end(), [&](const PlacedText& one) {
            return besideEachOther(*row, one) < 0.5;
        });
        const double top = row->top;
        std::stable_sort(row, end,
                         [](const PlacedText& a, const PlacedText& b) { return a.left < b.left; });
        for (; row != end; ++row) lines.push_back({withNumbers(row->text), top});
    }
    return lines;
}

}  // namespace ReelCore
