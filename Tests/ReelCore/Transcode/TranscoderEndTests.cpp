#include "ReelCore/Platform/RunningChild.h"
#include "Support/FakeTool.h"
#include "TranscodeFixture.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <thread>

namespace ReelCore {

namespace {

using namespace std::chrono_literals;
using TestSupport::FakeTool;

constexpr std::chrono::milliseconds longEnough(60'000);

bool isGone(int process) {
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

bool comesTrue(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + longEnough;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

/// The numbers of the processes for which `is` says so of their folder in /proc.
std::vector<int> processesWhere(const std::function<bool(const URL&)>& is) {
    std::vector<int> numbers;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != name.npos) continue;
        if (is(entry.path())) numbers.push_back(std::stoi(name));
    }
    return numbers;
}

std::string textOf(const URL& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<int> processesAt(const URL& path) {
    return processesWhere([&](const URL& process) {
        return textOf(process / "cmdline").find(path.native()) != std::string::npos;
    });
}

std::vector<int> childrenOf(int parent) {
    return processesWhere([&](const URL& process) {
        return textOf(process / "status").find("PPid:\t" + std::to_string(parent) + "\n") !=
               std::string::npos;
    });
}

/// A program of its own that transcodes, with a log and a link in the temporary folder, and is
/// ended from outside.
class TranscoderEnd : public TranscodeFixture {
protected:
    void SetUp() override {
        input_ = clip("in/A001.mov", {.seconds = 20.0});
        lut_ = folder() / "it's.cube";
        TestSupport::writeFile(lut_, flatCube("0.5 0.5 0.5"));
    }

    URL output() const { return folder() / "out/A001.mp4"; }

    void start(const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{input_.native(), folder() / "out", lut_.native()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        program_.emplace(KELDO_LONGTRANSCODE, arguments,
                         RunningChild::Streams{.output = ChildStream::pipe()});
        number_ = std::stoi(nextLine());
    }

    std::string nextLine() {
        std::string line;
        char byte = 0;
        while (program_->read({&byte, 1}, longEnough) == 1U && byte != '\n') line += byte;
        return line;
    }

    /// The program itself, without what it has started.
    int program() const { return number_; }

    std::vector<int> children() const { return childrenOf(program()); }

    std::optional<RunningChild> program_;

private:
    int number_ = 0;
    URL input_;
    URL lut_;
};

TEST_F(TranscoderEnd, EachSignalThatAsks_EndsTheChildAndLeavesNoFileWhenTheProgramIsGone) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        start();
        const std::vector<int> started = children();
        EXPECT_EQ(started.size(), 1U);
        EXPECT_EQ(leftBehind().size(), 2U) << "a log and a link";

        ::kill(program(), number);

        program_->readAll();
        EXPECT_EQ(program_->wait(), 128 + number);
        for (const int child : started) EXPECT_TRUE(isGone(child)) << number;
        EXPECT_EQ(leftBehind(), std::vector<std::string>{}) << number;
    }
}

TEST_F(TranscoderEnd, Signal_StartsNoNewChild) {
    const FakeTool ffmpeg("FFMPEG_PATH", "echo progress=continue; exec sleep 100");
    start();

    ::kill(program(), SIGTERM);

    const std::string said = program_->readAll();
    EXPECT_EQ(program_->wait(), 128 + SIGTERM);
    EXPECT_EQ(ffmpeg.calls().size(), 1U) << said;
    EXPECT_TRUE(processesAt(folder()).empty());
}

TEST_F(TranscoderEnd, SignalToAChildThatIgnoresIt_KillsItAfterThreeSeconds) {
    const FakeTool ffmpeg("FFMPEG_PATH", "trap '' TERM; echo progress=continue; exec sleep 100");
    start();
    const std::vector<int> started = children();
    EXPECT_EQ(started.size(), 1U);
    const auto before = std::chrono::steady_clock::now();

    ::kill(program(), SIGTERM);

    EXPECT_EQ(program_->wait(), 128 + SIGTERM);
    const auto took = std::chrono::steady_clock::now() - before;
    EXPECT_GE(took, 2999ms);
    EXPECT_LT(took, 5s);
    for (const int child : started) EXPECT_TRUE(comesTrue([&] { return isGone(child); }));
    EXPECT_EQ(leftBehind(), std::vector<std::string>{});
}

TEST_F(TranscoderEnd, KilledProgram_TakesItsChildAndItsFilesWithIt) {
    start();
    const std::vector<int> started = children();
    EXPECT_EQ(started.size(), 1U);
    EXPECT_EQ(leftBehind().size(), 2U) << "a log and a link";

    ::kill(program(), SIGKILL);

    EXPECT_EQ(program_->wait(), 128 + SIGKILL);
    for (const int child : started) EXPECT_TRUE(comesTrue([&] { return isGone(child); }));
    EXPECT_TRUE(comesTrue([&] { return leftBehind().empty(); }));
}

TEST_F(TranscoderEnd, ProgramThatAborts_TakesItsChildAndItsFilesWithIt) {
    start({"abort"});

    EXPECT_EQ(program_->wait(), 128 + SIGABRT);

    EXPECT_TRUE(comesTrue([&] { return processesAt(folder()).empty(); }));
    EXPECT_TRUE(comesTrue([&] { return leftBehind().empty(); }));
}

TEST_F(TranscoderEnd, KilledProgram_TakesWhatItsChildHasStartedWithIt) {
    const URL number = folder() / "number";
    const FakeTool ffmpeg("FFMPEG_PATH", "trap '' TERM; sleep 600 & echo $! >'" + number.native() +
                                             "'; echo progress=continue; wait; sleep 600");
    start();
    const int grandchild = std::stoi(TestSupport::readFile(number));
    EXPECT_FALSE(isGone(grandchild));

    ::kill(program(), SIGKILL);

    EXPECT_EQ(program_->wait(), 128 + SIGKILL);
    EXPECT_TRUE(comesTrue([&] { return isGone(grandchild); }));
    EXPECT_TRUE(comesTrue([&] { return leftBehind().empty(); }));
}

}  // namespace

}  // namespace ReelCore
