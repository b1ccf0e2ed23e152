#include "ReelCore/Platform/Regex.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Sync/BWFReader.h"

namespace ReelCore {

namespace {

/// The elements of one name, without regard to what they stand in. An element ends at the nearest
/// closing tag. Found by two searches and not by one expression for the whole element, which would
/// try each opening tag of a broken text against all the rest.
class Elements {
public:
    explicit Elements(const std::string& name)
        : opening_("<" + name + ">"), closing_("</" + name + ">") {}

    /// The trimmed content of the next element at or behind `from`, which moves behind it.
    std::optional<std::string> next(std::string_view text, std::size_t& from) const {
        const auto opening = opening_.find(text, from);
        if (!opening) return std::nullopt;
        const auto closing = closing_.find(text, opening->end);
        if (!closing) return std::nullopt;
        from = closing->end;
        return Text::trimmed(text.substr(opening->end, closing->begin - opening->end));
    }

    /// The first element's content, unless it is empty.
    std::optional<std::string> first(std::string_view text) const {
        std::size_t from = 0;
        auto content = next(text, from);
        if (content && content->empty()) content.reset();
        return content;
    }

private:
    Regex opening_;
    Regex closing_;
};

}  // namespace

BWFReader::IXML BWFReader::parseIXML(std::string_view bytes) {
    static const Elements names("NAME");
    static const Elements scene("SCENE");
    static const Elements take("TAKE");
    static const Elements tape("TAPE");
    static const Elements note("NOTE");
    if (bytes.empty()) return {};
    const std::string text = Text::wellFormed(bytes);
    IXML result{scene.first(text), take.first(text), tape.first(text), note.first(text), {}};
    std::size_t from = 0;
    while (const auto name = names.next(text, from)) {
        if (!name->empty()) result.tracks.push_back(*name);
    }
    return result;
}

}  // namespace ReelCore
