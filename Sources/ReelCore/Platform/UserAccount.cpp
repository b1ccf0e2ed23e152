#include "ReelCore/Platform/UserAccount.h"

#include "ReelCore/Platform/Fatal.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace ReelCore {

namespace {

/// What `read` finds in the account's entry of the account database, or the empty text.
std::string fromAccount(const std::function<std::string(const passwd&)>& read) {
    std::vector<char> memory(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (::getpwuid_r(::getuid(), &entry, memory.data(), memory.size(), &found) == ERANGE) {
        memory.resize(memory.size() * 2);
    }
    return found ? read(*found) : std::string();
}

/// Empty where the variable is not set or holds no absolute path.
URL absolutePathIn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value && *value == '/' ? URL(value) : URL();
}

}  // namespace

std::string UserAccount::loginName() {
    const std::string name = fromAccount([](const passwd& entry) { return entry.pw_name; });
    return name.empty() ? "unknown" : name;
}

std::string UserAccount::fullName() {
    const std::string name = fromAccount([](const passwd& entry) {
        const std::string comment = entry.pw_gecos ? entry.pw_gecos : "";
        return comment.substr(0, comment.find(','));
    });
    return name.empty() ? loginName() : name;
}

std::string UserAccount::hostName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return "unknown";
    return name.data();
}

URL UserAccount::dataFolder() {
    if (const URL named = absolutePathIn("XDG_DATA_HOME"); !named.empty()) return named;
    URL home = absolutePathIn("HOME");
    if (home.empty()) home = fromAccount([](const passwd& entry) { return entry.pw_dir; });
    if (!home.is_absolute()) fatal("this user has no home folder");
    return home / ".local/share";
}

}  // namespace ReelCore
