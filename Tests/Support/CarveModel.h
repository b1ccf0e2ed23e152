#pragma once

#include "ReelCore/Recovery/CarveTypes.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace TestSupport {

/// What a scan finds in an image that is in memory, place by place: no pieces, no pages, no haste,
/// nothing remembered. Quadratic and worse, for small images.
class CarveModel {
public:
    using Finding = ReelCore::Finding;
    using Kind = ReelCore::FindingKind;
    using Place = std::int64_t;

    explicit CarveModel(std::string_view image) : image_(image), total_(std::ssize(image)) {}

    std::vector<Finding> scan() const {
        std::vector<Finding> findings;
        Place skipUntil = 0;
        for (Place position = 0; position < total_;) {
            const std::string_view chunk = bytes(position, 0x2000000);
            for (const auto& [offset, kind] : hits(chunk)) {
                if (position + offset < skipUntil) continue;
                const auto finding = walk(kind, position + offset);
                if (!finding) continue;
                findings.push_back(*finding);
                skipUntil = finding->offset + finding->length;
            }
            position = std::max(position + 0x1FF0000, skipUntil);
        }
        return findings;
    }

    struct Hit {
        Place offset;
        Kind kind;
    };

    /// Needle by needle.
    static std::vector<Hit> hits(std::string_view buffer) {
        std::vector<Hit> all;
        const auto each = [&](std::string_view needle, auto&& take) {
            for (auto at = buffer.find(needle); at != buffer.npos; at = buffer.find(needle, at + 1))
                take(static_cast<Place>(at));
        };
        const auto sized = [&](Kind kind, std::uint64_t least, std::uint64_t most) {
            return [=, &all](Place at) {
                if (at < 4) return;
                const std::uint64_t size = bigEndian(buffer, at - 4, 4);
                if (size >= least && size <= most) all.push_back({at - 4, kind});
            };
        };
        each("ftyp", sized(Kind::movie, 12, 65'536));
        each(partitionPrefix, [&](Place at) {
            if (at + 16 <= std::ssize(buffer) && isPartition(buffer.substr(size(at)), 2)) {
                all.push_back({at, Kind::mxf});
            }
        });
        each("icpf", sized(Kind::orphanProRes, 20, 67'108'864));
        each("RIFF", [&](Place at) {
            if (buffer.substr(size(at)).size() >= 12 && buffer.substr(size(at) + 8, 4) == "WAVE") {
                all.push_back({at, Kind::wave});
            }
        });
        std::ranges::stable_sort(all, {}, &Hit::offset);
        return all;
    }

private:
    static constexpr std::string_view partitionPrefix{
        "\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01", 13};

    static std::size_t size(Place number) { return static_cast<std::size_t>(number); }

    static std::uint64_t number(std::string_view bytes) {
        std::uint64_t value = 0;
        for (const char c : bytes) value = value << 8U | static_cast<unsigned char>(c);
        return value;
    }

    static std::uint64_t bigEndian(std::string_view bytes, Place at, std::size_t count) {
        return number(bytes.substr(size(at), count));
    }

    static Place littleEndian(std::string_view bytes, std::size_t at) {
        Place value = 0;
        for (std::size_t i = 4; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
        return value;
    }

    static bool isPartition(std::string_view bytes, char kind) {
        return bytes.size() >= 16 && bytes.starts_with(partitionPrefix) && bytes[13] == kind;
    }

    std::string_view bytes(Place at, Place count) const {
        if (at >= total_) return {};
        return image_.substr(size(at), size(count));
    }

    std::optional<Finding> walk(Kind kind, Place start) const {
        switch (kind) {
            case Kind::movie:
                return walkMovie(start);
            case Kind::mxf:
                return walkMXF(start);
            case Kind::orphanProRes:
                return walkRun(start);
            case Kind::wave:
                return walkWave(start);
        }
        return std::nullopt;
    }

    static bool isBox(std::string_view type) {
        for (const std::string_view known : {"ftyp", "moov", "mdat", "free", "skip", "wide", "uuid",
                                             "meta", "moof", "mfra", "pnot"}) {
            if (type == known) return true;
        }
        return false;
    }

    std::optional<Finding> walkMovie(Place start) const {
        Place position = start;
        bool moov = false;
        bool mdat = false;
        bool tail = false;
        while (position + 8 <= total_) {
            const std::string_view head = bytes(position, 16);
            const std::string_view type = head.substr(4, 4);
            if (!isBox(type) || (type == "ftyp" && position != start)) break;
            std::uint64_t length = number(head.substr(0, 4));
            if (length == 0) {
                length = static_cast<std::uint64_t>(total_ - position);
            } else if (length == 1) {
                if (head.size() < 16) break;
                length = number(head.substr(8));
            }
            if (length < 8 || length >> 63U != 0) break;
            moov = moov || type == "moov";
            mdat = mdat || type == "mdat";
            if (length > static_cast<std::uint64_t>(total_ - position)) {
                return Finding{Kind::movie, start, total_ - start, false};
            }
            position += static_cast<Place>(length);
            if (moov && mdat) {
                const std::string_view next = bytes(position, 8);
                if (next.size() < 8 || !isBox(next.substr(4)) || next.substr(4) == "ftyp") {
                    return Finding{Kind::movie, start, position - start, true};
                }
                tail = true;
            } else {
                tail = mdat;
            }
        }
        if (position == start || !(moov || tail)) return std::nullopt;
        return Finding{Kind::movie, start, position - start, moov && tail};
    }

    std::optional<Finding> walkMXF(Place start) const {
        Place position = start;
        Place count = 0;
        bool footer = false;
        while (position + 17 <= total_) {
            const std::string_view head = bytes(position, 32);
            if (!head.starts_with(partitionPrefix.substr(0, 4))) break;
            if (count > 0 && isPartition(head, 2)) break;
            footer = footer || isPartition(head, 4);
            std::uint64_t length = static_cast<unsigned char>(head[16]);
            Place lengthSize = 1;
            if (length >= 0x80) {
                const std::uint64_t more = length & 0x7FU;
                if (more == 0 || more > 8 || 17 + more > head.size()) break;
                length = number(head.substr(17, more));
                lengthSize += static_cast<Place>(more);
                if (length >> 63U != 0) break;
            }
            if (static_cast<Place>(length) > total_ - position - 16 - lengthSize) break;
            position += 16 + lengthSize + static_cast<Place>(length);
            ++count;
        }
        if (count < 3) return std::nullopt;
        return Finding{Kind::mxf, start, position - start, footer};
    }

    std::optional<Place> frameAt(Place at) const {
        const std::string_view head = bytes(at, 8);
        if (head.size() < 8 || head.substr(4) != "icpf") return std::nullopt;
        const auto length = static_cast<Place>(number(head.substr(0, 4)));
        if (length < 20 || length > 67'108'864 || at + length > total_) return std::nullopt;
        return length;
    }

    std::optional<Place> nextFrame(Place from) const {
        const std::string_view block = bytes(from, 0x800000);
        for (auto tag = block.find("icpf"); tag != block.npos; tag = block.find("icpf", tag + 1)) {
            const Place frame = from + static_cast<Place>(tag) - 4;
            if (tag >= 4 && frameAt(frame)) return frame;
        }
        return std::nullopt;
    }

    std::optional<Finding> walkRun(Place start) const {
        Place frames = 0;
        Place last = start;
        for (Place position = start; position + 8 <= total_;) {
            if (const auto length = frameAt(position)) {
                ++frames;
                last = position;
                position += *length;
                continue;
            }
            const auto next = nextFrame(position);
            if (!next) break;
            position = *next;
        }
        if (frames < 3) return std::nullopt;
        return Finding{Kind::orphanProRes, start, last - start, false};
    }

    Place boundary(Place from) const {
        for (Place position = from; position < total_; position += 0x7F0000) {
            const std::string_view block = bytes(position, 0x800000);
            std::size_t run = 0;
            for (std::size_t i = 0; i < block.size(); ++i) {
                run = i > 0 && block[i] == block[i - 1] ? run + 1 : 1;
                const bool blank = block[i] == '\0' || block[i] == '\xFF';
                if (blank && run == 4096) return position + static_cast<Place>(i) - 4095;
            }
            for (const Hit& hit : hits(block)) {
                if (hit.offset >= 1) return position + hit.offset;
            }
        }
        return total_;
    }

    std::optional<Finding> walkWave(Place start) const {
        const std::string_view riff = bytes(start, 12);
        if (riff.size() < 12) return std::nullopt;
        const Place riffSize = littleEndian(riff, 4);
        const Place limit = std::min(total_, start + 0x100000);
        Place cursor = start + 12;
        Place dataEnd = 0;
        while (cursor + 8 <= limit) {
            const std::string_view head = bytes(cursor, 8);
            const auto isText = [](char c) {
                return static_cast<unsigned char>(c) < 0x80 && (c < '\n' || c > '\r');
            };
            if (!std::ranges::all_of(head.substr(0, 4), isText)) break;
            const Place length = littleEndian(head, 4);
            if (head.starts_with("data")) {
                if (length > 0) dataEnd = cursor + 8 + length;
                break;
            }
            if (length >= 0x1000000) break;
            cursor += 8 + length + length % 2;
        }
        Place end = dataEnd;
        if (riffSize > 0) end = std::max(end, start + 8 + riffSize);
        if (end == 0) end = boundary(std::max(start + 44, cursor + 8));
        return Finding{Kind::wave, start, std::min(total_, end) - start, dataEnd > 0};
    }

    std::string_view image_;
    Place total_;
};

}  // namespace TestSupport
