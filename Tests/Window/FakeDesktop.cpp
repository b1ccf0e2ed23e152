#include "Window/FakeDesktop.h"

namespace WindowSupport {

std::optional<ReelCore::URL> FakeDesktop::chooseFolder(const QString& message) {
    messages.append(message);
    if (answers.empty()) return std::nullopt;
    const auto answer = answers.front();
    answers.pop_front();
    return answer;
}

void FakeDesktop::reveal(const ReelCore::URL& file) {
    revealed.push_back(file);
}

}  // namespace WindowSupport
