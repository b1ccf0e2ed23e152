#pragma once

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

namespace TestSupport {

/// A locale of this process in which a comma stands before the fraction, as long as it lives. Made
/// for the test, since few machines have one. Where no other thread runs.
class CommaLocale {
public:
    CommaLocale();
    ~CommaLocale();

    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// False where this machine can't make one: it lacks localedef or the sources of de_DE (package
    /// locales).
    bool isThere() const { return isThere_; }

private:
    TemporaryFolder folder_;
    EnvironmentVariable path_{"LOCPATH", folder_.path().native()};
    bool isThere_ = false;
};

}  // namespace TestSupport
