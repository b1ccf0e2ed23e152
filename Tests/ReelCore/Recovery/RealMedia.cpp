#include "RealMedia.h"

#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <fstream>
#include <sstream>

namespace TestSupport {

using ReelCore::Finding;
using ReelCore::FindingKind;
using ReelCore::URL;

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

FindingKind kindOf(const URL& clip) {
    if (clip.extension() == ".WAV") return FindingKind::wave;
    if (clip.extension() == ".MXF") return FindingKind::mxf;
    return FindingKind::movie;
}

}  // namespace

std::vector<Stretch> picturesOf(const URL& clip) {
    std::vector<Stretch> pictures;
    for (const std::string& line : linesOf(
             outputOf("ffprobe", {"-v", "error", "-select_streams", "v:0", "-show_entries",
                                  "packet=size,pos", "-of", "csv=p=0", "file:" + clip.native()}))) {
        const std::size_t comma = line.find(',');
        pictures.push_back({std::stoll(line.substr(comma + 1)), std::stoll(line.substr(0, comma))});
    }
    return pictures;
}

std::vector<std::string> pictureSums(const URL& clip) {
    std::vector<std::string> sums;
    for (const std::string& line : linesOf(
             outputOf("ffmpeg", {"-nostdin", "-v", "quiet", "-i", "file:" + clip.native(), "-map",
                                 "0:v:0", "-vsync", "passthrough", "-f", "framemd5", "-"}))) {
        if (!line.starts_with('#')) sums.push_back(line.substr(line.rfind(' ') + 1));
    }
    return sums;
}

std::string samplesOf(const URL& clip) {
    const TemporaryFolder folder;
    const URL samples = folder.path() / "samples";
    outputOf("ffmpeg", {"-nostdin", "-v", "quiet", "-i", "file:" + clip.native(), "-map", "0:a:0",
                        "-t", "10", "-c:a", "pcm_s16le", "-f", "s16le", samples.native()});
    return readFile(samples);
}

std::string sha256Of(const URL& file) {
    return outputOf("sha256sum", {"--binary", file.native()}).substr(0, 64);
}

bool standsAt(const URL& image, std::int64_t offset, std::string_view bytes) {
    std::string there(bytes.size(), '\0');
    std::ifstream file(image, std::ios::binary);
    file.seekg(offset).read(there.data(), std::ssize(there));
    return file && there == bytes;
}

std::string_view cut(std::string_view bytes, const Stretch& run) {
    return bytes.substr(static_cast<std::size_t>(run.offset), static_cast<std::size_t>(run.length));
}

std::int64_t tripletsBeyond(std::string_view clip, std::int64_t offset) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(clip.at(at)); };
    std::size_t end = 0;
    while (static_cast<std::int64_t>(end) < offset) {
        const std::size_t first = byte(end + 16);
        const std::size_t more = first < 0x80 ? 0 : first - 0x80;
        std::size_t length = more == 0 ? first : 0;
        for (std::size_t i = 0; i < more; ++i) length = length << 8U | byte(end + 17 + i);
        end += 17 + more + length;
    }
    return static_cast<std::int64_t>(end);
}

Finding wholeFinding(const URL& clip, std::int64_t offset) {
    return {kindOf(clip), offset, static_cast<std::int64_t>(std::filesystem::file_size(clip)),
            true};
}

}  // namespace TestSupport
