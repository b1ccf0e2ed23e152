#include "ReelCore/Platform/Text.h"
#include "ReelCore/Sync/BWFReader.h"

#include <array>

namespace ReelCore {

namespace {

bool takeFront(std::string_view& text, std::string_view spelling) {
    if (!text.starts_with(spelling)) return false;
    text.remove_prefix(spelling.size());
    return true;
}

/// Takes from the front of `text` one letter that is `letter`, a lower-case one, but for its case.
/// Two letters beyond ASCII count as well: the long s and the sign for kelvin are an s and a k.
bool takeLetter(std::string_view& text, char letter) {
    constexpr char caseBit = 'a' ^ 'A';
    if (!text.empty() && (text.front() | caseBit) == letter) {
        text.remove_prefix(1);
        return true;
    }
    return (letter == 's' && takeFront(text, "\u017F")) ||
           (letter == 'k' && takeFront(text, "\u212A"));
}

/// The elements of one name, without regard to what they stand in. An element ends at the nearest
/// closing tag; what else stands in it is its content.
class Elements {
public:
    /// `name` is in lower case.
    explicit Elements(std::string_view name) : name_(name) {}

    /// Looks at the tag that may stand at `offset`, a "<". To be called from front to back.
    void visit(std::string_view text, std::size_t offset) {
        std::string_view rest = text.substr(offset + 1);
        if (begin_ && !takeFront(rest, "/")) return;
        for (const char letter : name_) {
            if (!takeLetter(rest, letter)) return;
        }
        if (!takeFront(rest, ">")) return;
        if (begin_) {
            contents_.push_back(Text::trimmed(text.substr(*begin_, offset - *begin_)));
            begin_.reset();
        } else {
            begin_ = text.size() - rest.size();
        }
    }

    /// The first element's content, unless it is empty.
    std::optional<std::string> first() const {
        if (contents_.empty() || contents_.front().empty()) return std::nullopt;
        return contents_.front();
    }

    /// The contents that are not empty, in order.
    std::vector<std::string> all() && {
        std::erase(contents_, "");
        return std::move(contents_);
    }

private:
    std::string_view name_;
    std::optional<std::size_t> begin_;  ///< Of the content whose closing tag is looked for.
    std::vector<std::string> contents_;
};

}  // namespace

// By hand and not by regular expressions: those took most of the time that a recording cost.
BWFReader::IXML BWFReader::parseIXML(std::string_view bytes) {
    std::array<Elements, 5> elements{Elements("scene"), Elements("take"), Elements("tape"),
                                     Elements("note"), Elements("name")};
    const std::string text = Text::wellFormed(bytes);
    for (auto at = text.find('<'); at != text.npos; at = text.find('<', at + 1)) {
        for (Elements& each : elements) each.visit(text, at);
    }
    auto& [scene, take, tape, note, name] = elements;
    return {scene.first(), take.first(), tape.first(), note.first(), std::move(name).all()};
}

}  // namespace ReelCore
