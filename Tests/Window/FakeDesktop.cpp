#include "Window/FakeDesktop.h"

namespace WindowSupport {

std::optional<ReelCore::URL> FakeDesktop::chooseFolder(const QString& message,
                                                       keldo_app::FirstPlace) {
    messages.append(message);
    if (answers.empty()) return std::nullopt;
    const auto answer = answers.front();
    answers.pop_front();
    return answer;
}

std::optional<ReelCore::URL> FakeDesktop::chooseFile(const QString& message,
                                                     keldo_app::FirstPlace first) {
    return chooseFolder(message, first);
}

std::vector<ReelCore::URL> FakeDesktop::chooseFiles(const QString& message, keldo_app::FirstPlace) {
    messages.append(message);
    if (filesAnswers.empty()) return {};
    const auto answer = filesAnswers.front();
    filesAnswers.pop_front();
    return answer;
}

void FakeDesktop::reveal(const std::vector<ReelCore::URL>& files) {
    revealed.insert(revealed.end(), files.begin(), files.end());
}

void FakeDesktop::open(const ReelCore::URL& file) {
    opened.push_back(file);
}

void FakeDesktop::composeMail(const QString& subject, const ReelCore::URL& attachment,
                              QObject* asker, MailTold told) {
    mails.push_back({subject, attachment});
    QMetaObject::invokeMethod(
        asker, [told, outcome = mailOutcome] { told(outcome); }, Qt::QueuedConnection);
}

}  // namespace WindowSupport
