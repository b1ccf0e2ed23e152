#include "ProResTake.h"

#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <cstdlib>
#include <sstream>

#include <fmt/format.h>

namespace TestSupport {

namespace {

using ReelCore::URL;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// "25" or "30000/1001" as a number.
double fraction(const std::string& text) {
    const auto slash = text.find('/');
    const double top = std::atof(text.c_str());
    return slash == std::string::npos ? top : top / std::atof(text.c_str() + slash + 1);
}

}  // namespace

double TakeKind::framesASecond() const {
    return fraction(rate);
}

void recordTake(const URL& url, const TakeKind& kind, TakeContent content, IndexPlace index) {
    const bool isReference = content == TakeContent::reference;
    const int frames = isReference ? kind.frames / 2 + 1 : kind.frames;
    ClipRecipe recipe;
    recipe.rate = kind.rate;
    recipe.size = kind.size;
    recipe.seconds = frames / kind.framesASecond();
    recipe.video = {"-c:v",       "prores_ks",
                    "-profile:v", kind.profile,
                    "-pix_fmt",   kind.profile.starts_with("4444") ? "yuv444p10le" : "yuv422p10le"};
    recipe.channels.clear();
    if (kind.channels > 0) recipe.channels.push_back(kind.channels);
    recipe.audio = {"-c:a", fmt::format("pcm_s{}le", kind.bits)};
    if (isReference) recipe.more = {"-vf", "negate,hflip", "-af", "volume=0.3"};
    if (kind.channels == 0 && isReference) recipe.more = {"-vf", "negate,hflip"};
    if (index == IndexPlace::front) {
        recipe.more.insert(recipe.more.end(), {"-movflags", "faststart"});
    }
    makeClip(url, recipe);
}

TakeLayout layoutOf(const URL& take) {
    TakeLayout layout;
    const std::string packets =
        outputOf("ffprobe", {"-v", "error", "-show_entries", "packet=codec_type,pos,size", "-of",
                             "csv=p=0:s=\\ ", take.native()});
    for (const std::string& line : linesOf(packets)) {
        std::istringstream words(line);
        std::string type;
        Piece piece;
        words >> type >> piece.size >> piece.offset;
        (type == "video" ? layout.frames : layout.sound).push_back(piece);
    }
    return layout;
}

DecodedTake decoded(const URL& take, const TakeKind& kind) {
    const TemporaryFolder folder;
    const URL frames = folder.path() / "frames";
    const URL sound = folder.path() / "sound";
    std::vector<std::string> arguments{"-nostdin",    "-v",   "error",    "-i",
                                       take.native(), "-map", "0:v",      "-fps_mode",
                                       "passthrough", "-f",   "framemd5", frames.native()};
    if (kind.channels > 0) {
        arguments.insert(arguments.end(), {"-map", "0:a", "-f", "s32le", sound.native()});
    }
    DecodedTake result;
    result.complaints = runTool("ffmpeg", arguments).output;
    result.frames = linesOf(readFile(frames));
    std::erase_if(result.frames, [](const std::string& line) { return line.starts_with("#"); });
    if (kind.channels > 0) result.sound = readFile(sound);
    return result;
}

MediaInfo mediaInfo(const URL& take) {
    const TemporaryFolder folder;
    const URL pattern = folder.path() / "pattern";
    writeFile(pattern,
              "General;%IsTruncated%|\n"
              "Video;%Format% %CodecID%|%FrameCount%|%Duration%|\n"
              "Audio;%Channels% x %BitDepth%|%Duration%\n");
    const std::string said =
        outputOf("mediainfo", {"--Output=file://" + pattern.native(), take.native()});
    std::istringstream words(said.substr(0, said.find('\n')));
    const auto next = [&] {
        std::string word;
        std::getline(words, word, '|');
        return word;
    };
    MediaInfo info;
    info.truncated = next();
    info.codec = next();
    info.frames = next();
    info.duration = std::atof(next().c_str());
    info.sound = next();
    info.soundDuration = std::atof(next().c_str());
    return info;
}

}  // namespace TestSupport
