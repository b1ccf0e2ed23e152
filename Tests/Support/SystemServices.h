#pragma once

#include "Support/FolderTree.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

/// The services that a desktop has and a build machine lacks: a system bus, udev and UDisks2, in
/// a world of the test's own. The process gets its own mount table (with fresh /run and /media)
/// and network, in which kernel messages arrive anew, so that nothing reaches services that run
/// outside and nothing stays behind: what is mounted and started ends with the object, or with
/// the process however it ends.
///
/// Needs root, and is made before the process has threads of its own. Throws std::runtime_error
/// where a service does not come up.
class SystemServices {
public:
    /// The program of UDisks2.
    static constexpr const char* udisksd = "/usr/libexec/udisks2/udisksd";

    struct Setup {
        /// What is started to be the disk service; with nothing, the bus and udev run alone.
        std::vector<std::string> diskService = {udisksd};
        std::string locale = "C.UTF-8";  ///< That UDisks2 and what it starts run in.
        /// Programs in /usr/sbin that are other scripts here; without a script, missing ones.
        std::map<std::string, std::optional<std::string>> programs = {};
    };

    explicit SystemServices(const Setup& setup);
    SystemServices() : SystemServices(Setup{}) {}
    ~SystemServices();

    SystemServices(const SystemServices&) = delete;
    SystemServices& operator=(const SystemServices&) = delete;

    /// Waits until udev has dealt with all that the kernel told it.
    static void settle();

    /// Why this machine can't have it; empty where it can.
    static std::string missing();

private:
    class World;
    class Daemon;

    TemporaryFolder folder_;
    std::unique_ptr<World> world_;
    std::vector<std::unique_ptr<Daemon>> daemons_;
};

}  // namespace TestSupport
