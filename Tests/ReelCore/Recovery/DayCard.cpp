#include "DayCard.h"

#include "RealMedia.h"
#include "Support/Clip.h"
#include "Support/Tool.h"

namespace TestSupport {

namespace {

const std::vector<std::string> mpeg2{"-c:v", "mpeg2video", "-g", "1", "-q:v", "2"};

}  // namespace

DayCard::DayCard(std::unique_ptr<MemoryCard> card) : card_(std::move(card)) {
    makeClips();
    shoot();
    useAgain();
    card_->die();
}

void DayCard::makeClips() {
    makeClip(clip("REEL1.MOV"), {.seconds = 2});
    makeClip(clip("REEL2.MOV"), {.timecode = "10:00:00:00", .more = {"-movflags", "+faststart"}});
    makeClip(clip("REEL3.MP4"), {.video = {"-c:v", "libx264"}, .audio = {"-c:a", "aac"}});
    makeClip(clip("REEL4.MXF"), {.video = mpeg2});
    makeClip(clip("REEL5.MOV"), {.channels = {8, 2}, .audio = {"-c:a", "pcm_s24le"}});
    makeSound("SOUND1.WAV", "sin(2000*t)", "pcm_s24le");
    makeSound("SOUND2.WAV", "sin(2000*t)|sin(300*t)|sin(40*t)|0|0|0", "pcm_s16le");
    makeClip(clip("GONE1.MOV"), {});
    makeSound("GONE2.WAV", "sin(100*t)|sin(200*t)", "pcm_s24le");
    makeClip(clip("GONE3.MXF"), {.video = mpeg2, .channels = {}});
    for (const char* hole : {"HOLE1", "HOLE2", "HOLE3", "HOLE4"}) {
        writeFile(clip(hole), noise(300'000, 2));
    }
    // Whatever is read beyond the end of a hole is no other clip.
    for (const char* pad : {"PAD1", "PAD2", "PAD3", "PAD4"}) {
        writeFile(clip(pad), noise(900'000, 3));
    }
    makeClip(clip(beheaded), {.seconds = 2});
    makeSound("NEW1.WAV", "sin(700*t)", "pcm_s16le");
    makeClip(clip(splitMovie), {.seconds = 2,
                                .video = {"-c:v", "libx264", "-b:v", "3M", "-minrate", "3M"},
                                .more = {"-f", "mov"}});
    makeClip(clip(splitMXF), {.video = mpeg2});
}

void DayCard::makeSound(const std::string& name, const std::string& tones,
                        const std::string& codec) {
    outputOf("ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i",
                        "aevalsrc=" + tones + ":s=48000:d=1.5", "-c:a", codec, "-write_bext", "1",
                        "-metadata", "time_reference=172800000", clip(name).native()});
}

void DayCard::shoot() {
    // The one to be beheaded stands last: a run of frames goes on to the next within 8 MiB,
    // whatever clip that is of.
    for (const char* name : {"REEL1.MOV", "REEL2.MOV", "REEL3.MP4", "REEL4.MXF", "REEL5.MOV",
                             "SOUND1.WAV", "SOUND2.WAV", "GONE1.MOV", "GONE2.WAV", "GONE3.MXF",
                             "HOLE1", "PAD1", "HOLE2", "PAD2", "HOLE3", "PAD3", "HOLE4", "PAD4"}) {
        add(name);
    }
    add(beheaded);
    card_->fill();
}

void DayCard::useAgain() {
    split(splitMovie, "HOLE1", "HOLE2");
    split(splitMXF, "HOLE3", "HOLE4");
    card_->overwriteHead(beheaded, clip("NEW1.WAV"));
    layouts_["NEW1.WAV"] = card_->layoutOf("NEW1.WAV");
    for (const char* name : {"GONE1.MOV", "GONE2.WAV", "GONE3.MXF"}) card_->remove(name);
}

void DayCard::add(const std::string& name) {
    card_->add(clip(name));
    layouts_[name] = card_->layoutOf(name);
}

void DayCard::split(const std::string& name, const std::string& hole, const std::string& other) {
    card_->remove(hole);
    card_->remove(other);
    add(name);
    card_->fill();
}

std::vector<Stretch> DayCard::framesLeft() const {
    const std::string bytes = readFile(clip(beheaded));
    const std::int64_t begin = layout(beheaded).front().offset;
    std::vector<Stretch> left;
    for (const Stretch& frame : picturesOf(clip(beheaded))) {
        const Stretch place{begin + frame.offset, frame.length};
        if (standsAt(image(), place.offset, cut(bytes, frame))) left.push_back(place);
    }
    return left;
}

std::string DayCard::flaw() const {
    if (card_->isReadable()) return "the file system lives";
    for (const std::string& name : whole) {
        if (layout(name).size() != 1) return name + " is split";
        const std::int64_t begin = layout(name).front().offset;
        if (!standsAt(image(), begin, readFile(clip(name)))) return name + " is not where it was";
    }
    if (layout(splitMovie).size() < 2) return splitMovie + " is not split";
    if (layout(splitMXF).size() < 2) return splitMXF + " is not split";
    if (layout(beheaded).size() != 1) return beheaded + " is split";
    if (layout("NEW1.WAV").front().offset != layout(beheaded).front().offset) {
        return beheaded + " still has its head";
    }
    const std::size_t left = framesLeft().size();
    if (left < 10 || left >= picturesOf(clip(beheaded)).size())
        return "too many or few frames left";
    return "";
}

}  // namespace TestSupport
