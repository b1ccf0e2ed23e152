// probe-run ROUNDS CLIP...: reads each clip, and asks ffprobe the same by a bare loop, in turns.
// Prints a line for each: "read" or "loop", seconds, the number of ffprobe runs the loop made.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Sync/Synchronizer.h"
#include "ReelCore/Transcode/FFmpegLocator.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ReelCore;

namespace {

using Arguments = std::vector<std::string>;

const Arguments plain{"-of", "default=nk=1:nw=1"};
const Arguments streamTimecode{"-select_streams", "v:0", "-show_entries", "stream_tags=timecode"};
const Arguments fileTimecode{"-show_entries", "format_tags=timecode"};

Arguments joined(const Arguments& first, const Arguments& then) {
    Arguments all = first;
    all.insert(all.end(), then.begin(), then.end());
    return all;
}

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(2);
}

/// All that a child prints, and nothing more.
std::string askBare(const char* program, const Arguments& question, const char* clip) {
    std::vector<char*> list{const_cast<char*>(program), const_cast<char*>("-v"),
                            const_cast<char*>("error")};
    for (const std::string& one : question) list.push_back(const_cast<char*>(one.c_str()));
    list.push_back(const_cast<char*>(clip));
    list.push_back(nullptr);

    int ends[2];
    if (::pipe(ends) != 0) fail("pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    ::posix_spawn_file_actions_addclose(&actions, ends[1]);
    pid_t child = 0;
    if (::posix_spawn(&child, program, &actions, nullptr, list.data(), environ) != 0) fail(program);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    std::string text;
    std::array<char, 4096> block;
    ssize_t count = 0;
    while ((count = ::read(ends[0], block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return text;
}

/// The queries that reading a clip makes. Returns how many they were.
int loopBare(const char* program, const char* clip) {
    const auto ask = [&](const Arguments& question) { return askBare(program, question, clip); };
    const auto stream = [](const char* which, const char* entry) {
        return Arguments{"-select_streams", which, "-show_entries", entry};
    };
    int runs = 6;
    ask(joined(stream("v:0", "stream=r_frame_rate"), plain));
    if (ask(joined(streamTimecode, plain)).empty()) {
        ask(joined(fileTimecode, plain));
        ++runs;
    }
    ask(joined(stream("a:0", "stream=channels"), plain));
    ask(joined(stream("a", "stream=index"), plain));
    ask({"-show_entries", "format=duration", "-of", "default=nokey=1:noprint_wrappers=1"});
    ask(joined(stream("v:0", "stream=width,height"), {"-of", "csv=p=0:s=x"}));
    return runs;
}

template <class Action>
double secondsOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void runRound(const char* ffprobe, const char* clip, bool readFirst) {
    const auto read = [&] {
        fmt::print("read {:.6f}\n", secondsOf([&] { Synchronizer::readVideo(clip); }));
    };
    if (readFirst) read();
    int runs = 0;
    const double seconds = secondsOf([&] { runs = loopBare(ffprobe, clip); });
    fmt::print("loop {:.6f} {}\n", seconds, runs);
    if (!readFirst) read();
}

}  // namespace

int main(int count, char* arguments[]) {
    const int rounds = count > 2 ? std::atoi(arguments[1]) : 0;
    const auto ffprobe = FFmpegLocator().ffprobe();
    if (rounds < 1 || !ffprobe) {
        fmt::print(stderr, "usage: probe-run ROUNDS CLIP...; needs ffprobe\n");
        return 2;
    }
    try {
        for (int i = 0; i < rounds; ++i) {
            for (int clip = 2; clip < count; ++clip) {
                runRound(ffprobe->c_str(), arguments[clip], (i + clip) % 2 == 0);
            }
        }
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
