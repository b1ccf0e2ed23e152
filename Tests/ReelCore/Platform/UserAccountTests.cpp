#include "ReelCore/Platform/UserAccount.h"

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

using namespace ReelCore;
using TestSupport::EnvironmentVariable;
using TestSupport::outputOf;

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

struct Account {
    std::string loginName;
    uid_t id = 0;
    std::string comment;
};

/// The accounts of this computer, as the system's own tool lists them.
std::vector<Account> accounts() {
    std::vector<Account> all;
    std::istringstream lines(outputOf("getent", {"passwd"}));
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, ':');) fields.push_back(part);
        all.push_back({fields[0], static_cast<uid_t>(std::stoul(fields[2])), fields[4]});
    }
    return all;
}

/// Becomes another user and ends well if that one is told by the given names. For a child process
/// only.
[[noreturn]] void expectNames(uid_t id, const std::string& loginName, const std::string& fullName) {
    if (::setuid(id) != 0) std::abort();
    const bool right = UserAccount::loginName() == loginName && UserAccount::fullName() == fullName;
    std::fprintf(stderr, "%s, %s", UserAccount::loginName().c_str(),
                 UserAccount::fullName().c_str());
    std::_Exit(right ? 0 : 1);
}

TEST(UserAccount, LoginName_IsTheOneOfTheSystem) {
    EXPECT_EQ(UserAccount::loginName(), firstLine(outputOf("id", {"-un"})));
}

TEST(UserAccount, HostName_IsTheOneOfTheSystem) {
    EXPECT_EQ(UserAccount::hostName(), firstLine(outputOf("uname", {"-n"})));
}

TEST(UserAccountDeathTest, FullName_IsTheFirstPartOfTheCommentElseTheLoginName) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become other users";

    for (const Account& account : accounts()) {
        const std::string name = account.comment.substr(0, account.comment.find(','));
        EXPECT_EXIT(
            expectNames(account.id, account.loginName, name.empty() ? account.loginName : name),
            testing::ExitedWithCode(0), "");
    }
}

/// The same for an account in a table of accounts of our own.
[[noreturn]] void expectNamesIn(const ReelCore::URL& table, uid_t id, const std::string& loginName,
                                const std::string& fullName) {
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount(table.c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr) != 0) {
        std::abort();
    }
    expectNames(id, loginName, fullName);
}

TEST(UserAccountDeathTest, AccountWithALongComment_IsReadWhole) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become another user";
    const TestSupport::TemporaryFolder folder;
    const std::string longName(100'000, 'n');
    TestSupport::writeFile(folder.path() / "passwd",
                           "ada:x:987653:1:" + longName + ",room 1:/:/bin/sh\n");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));

    EXPECT_EXIT(expectNamesIn(folder.path() / "passwd", 987'653, "ada", longName),
                testing::ExitedWithCode(0), "");
}

TEST(UserAccountDeathTest, UserWithoutAnAccount_IsUnknown) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become another user";
    constexpr uid_t nobodysNumber = 987'654;

    EXPECT_EXIT(expectNames(nobodysNumber, "unknown", "unknown"), testing::ExitedWithCode(0), "");
}

TEST(UserAccount, DataFolder_IsTheNamedOneIfThatIsAnAbsolutePath) {
    const EnvironmentVariable home("HOME", "/home/dit");
    for (const auto& [named, folder] : std::map<std::string, std::string>{
             {"/srv/data", "/srv/data"},
             {"srv/data", "/home/dit/.local/share"},
             {"", "/home/dit/.local/share"},
         }) {
        const EnvironmentVariable data("XDG_DATA_HOME", named);
        EXPECT_EQ(UserAccount::dataFolder(), folder) << named;
    }
}

TEST(UserAccount, DataFolderWithoutAnyVariable_IsInTheHomeOfTheAccount) {
    const EnvironmentVariable data("XDG_DATA_HOME", std::nullopt);
    const std::string entry = firstLine(outputOf("getent", {"passwd", std::to_string(::getuid())}));
    std::vector<std::string> fields;
    std::istringstream parts(entry);
    for (std::string part; std::getline(parts, part, ':');) fields.push_back(part);

    for (const bool isEmpty : {true, false}) {
        const EnvironmentVariable home =
            isEmpty ? EnvironmentVariable("HOME", "") : EnvironmentVariable("HOME", std::nullopt);
        EXPECT_EQ(UserAccount::dataFolder(), fields.at(5) + "/.local/share");
    }
}

TEST(UserAccountDeathTest, DataFolderOfAUserWithoutAHome_IsAFatalFault) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become a user that nobody knows";
    const EnvironmentVariable data("XDG_DATA_HOME", std::nullopt);
    const EnvironmentVariable home("HOME", std::nullopt);

    EXPECT_DEATH(
        {
            if (::setuid(54321) == 0) static_cast<void>(UserAccount::dataFolder());
        },
        "this user has no home folder");
}

}  // namespace
