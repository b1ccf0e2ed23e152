#include "ReelCore/Sync/FCPXMLWriter.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Sync/FCP.h"

#include <algorithm>
#include <map>
#include <span>

#include <fmt/format.h>

namespace ReelCore {

namespace {

/// The one format that all of a timeline's times are in.
struct Format {
    FrameRate rate = FrameRate::fps24;
    std::int64_t width = 1920;
    std::int64_t height = 1080;

    std::string_view timecodeFormat() const { return rate.isDrop() ? "DF" : "NDF"; }
};

Format formatOf(const SyncResult& result) {
    if (result.groups.empty()) return {};
    const VideoClip& first = result.groups.front().video;
    return {result.timelineRate(), first.width, first.height};
}

/// The media that the clips refer to, each location once, numbered in the order of first use.
class Assets {
public:
    explicit Assets(const FrameRate& rate) : rate_(rate) {}

    std::string idOf(const VideoClip& clip) {
        return idOf(clip.url, clip.duration, R"(hasVideo="1")");
    }

    std::string idOf(const AudioClip& clip) {
        return idOf(clip.url, clip.duration,
                    R"(hasAudio="1" audioSources="1" audioChannels="2" audioRate="48000")");
    }

    const std::string& xml() const { return xml_; }

private:
    std::string idOf(const URL& url, double duration, std::string_view content) {
        const auto [entry, isNew] = ids_.try_emplace(url, fmt::format("r{}", ids_.size() + 2));
        if (isNew) {
            xml_ += fmt::format(
                R"(        <asset id="{}" name="{}" start="0s" duration="{}" format="r1" {}>
            <media-rep kind="original-media" src="{}"/>
        </asset>
)",
                entry->second, Text::escapedXML(lastPathComponent(url)), FCP::time(duration, rate_),
                content, absoluteString(url));
        }
        return entry->second;
    }

    FrameRate rate_;
    std::map<URL, std::string> ids_;
    std::string xml_;
};

std::string clipXML(const SyncGroup& group, double offset, const Format& format, Assets& assets) {
    const VideoClip& video = group.video;
    const std::string duration = FCP::time(video.duration, format.rate);
    const std::string clip = fmt::format(
        R"(<asset-clip ref="{}" offset="{}" name="{}" duration="{}" format="r1" tcFormat="{}")",
        assets.idOf(video), FCP::time(offset, format.rate), Text::escapedXML(video.name()),
        duration, format.timecodeFormat());
    const auto best = group.best();
    if (!best) return fmt::format("                {}/>\n", clip);
    return fmt::format(
        R"(            {}>
                <audio ref="{}" lane="-1" offset="0s" duration="{}" start="{}" role="dialogue"/>
            </asset-clip>
)",
        clip, assets.idOf(*best->clip), duration,
        FCP::time(std::max(best->audioOffset, 0.0), format.rate));
}

}  // namespace

std::string FCPXMLWriter::fcpxml(const SyncResult& result, std::string_view project,
                                 std::string_view event) {
    const Format format = formatOf(result);
    Assets assets(format.rate);
    std::string clips;
    double offset = 0.0;
    for (const SyncGroup& group : result.groups) {
        clips += clipXML(group, offset, format, assets);
        offset += group.video.duration;
    }
    return fmt::format(
        R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE fcpxml>
<fcpxml version="1.9">
    <resources>
        <format id="r1" name="FFVideoFormat" frameDuration="{}" width="{}" height="{}"/>
{}    </resources>
    <library>
        <event name="{}">
            <project name="{}">
                <sequence format="r1" duration="{}" tcStart="0s" tcFormat="{}" audioLayout="stereo" audioRate="48k">
                    <spine>
{}                </spine>
                </sequence>
            </project>
        </event>
    </library>
</fcpxml>)",
        FCP::frameDurationString(format.rate), format.width, format.height, assets.xml(),
        Text::escapedXML(event), Text::escapedXML(project), FCP::time(offset, format.rate),
        format.timecodeFormat(), clips);
}

URL FCPXMLWriter::write(const SyncResult& result, const URL& url, std::string_view project) {
    const std::string text = fcpxml(result, project, "keldobay");
    File file = File::create(url);
    file.write(std::as_bytes(std::span(text)));
    file.flush();
    return url;
}

}  // namespace ReelCore
