#include "ReelCore/Transcode/ProgressReports.h"

#include "ReelCore/Platform/Text.h"

namespace ReelCore {

namespace {

std::string_view withoutBlanks(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

}  // namespace

void ProgressReports::take(std::string_view bytes) {
    pending_ += bytes;
    for (auto end = pending_.find('\n'); end != pending_.npos; end = pending_.find('\n')) {
        const std::string line = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        if (takeLine(line)) return;
    }
}

bool ProgressReports::takeLine(std::string_view line) {
    const auto sign = line.find('=');
    if (sign == line.npos || !Text::isWellFormed(line)) return false;
    const std::string key(withoutBlanks(line.substr(0, sign)));
    const std::string value(withoutBlanks(line.substr(sign + 1)));
    fields_[key] = value;
    if (key != "progress") return false;
    report_(fields_);
    return value == "end";
}

}  // namespace ReelCore
