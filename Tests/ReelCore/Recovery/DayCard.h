#pragma once

#include "MemoryCard.h"
#include "Support/FolderTree.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport {

/// A card as it is after a day: shot full with real clips, in part deleted, and in part used again.
/// All that the tests say of it is by the file system's account, taken before that dies, and by
/// comparing the image with the clips.
class DayCard {
public:
    /// Makes the clips with ffmpeg, puts them on the card and lets its file system die.
    explicit DayCard(std::unique_ptr<MemoryCard> card);

    ReelCore::URL image() const { return card_->image(); }

    /// A clip as it was before it came onto the card.
    ReelCore::URL clip(const std::string& name) const { return folder_.path() / name; }

    const std::vector<Stretch>& layout(const std::string& name) const { return layouts_.at(name); }

    /// A copy of them stands on the card, whole and in one run of bytes; some are deleted.
    const std::vector<std::string> whole{"REEL1.MOV", "REEL2.MOV",  "REEL3.MP4",  "REEL4.MXF",
                                         "REEL5.MOV", "SOUND1.WAV", "SOUND2.WAV", "GONE1.MOV",
                                         "GONE2.WAV", "GONE3.MXF",  "NEW1.WAV"};

    /// They lie in the room of files that were deleted, in several runs.
    const std::string splitMovie = "SPLIT1.MP4";
    const std::string splitMXF = "SPLIT2.MXF";

    /// It was deleted, and "NEW1.WAV" was written over its head and first frames.
    const std::string beheaded = "OLD1.MOV";

    /// The frames of that clip that are still on the card, in its order.
    std::vector<Stretch> framesLeft() const;

    /// Why the card is not what the above says; empty if it is. A test of it proves nothing then.
    std::string flaw() const;

private:
    void makeClips();
    void makeSound(const std::string& name, const std::string& tones, const std::string& codec);
    void shoot();
    void useAgain();
    void add(const std::string& name);
    void split(const std::string& name, const std::string& hole, const std::string& other);

    TemporaryFolder folder_;
    std::unique_ptr<MemoryCard> card_;
    std::map<std::string, std::vector<Stretch>> layouts_;
};

}  // namespace TestSupport
