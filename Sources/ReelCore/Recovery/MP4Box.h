#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// One box of a QuickTime or MP4 index with its children, in memory: a tree to be read, edited in
/// place and written back. Only seven types are ever taken apart; the bytes of all others survive
/// unchanged. A tree belongs to the one operation that built it.
class MP4Box {
public:
    using Bytes = std::vector<std::byte>;
    using Children = std::vector<std::shared_ptr<MP4Box>>;

    /// The types that hold boxes.
    static const std::set<std::string, std::less<>> containers;

    MP4Box(std::string type, Bytes payload, Children children);

    /// The tree of one box whose body is `payload`. Never fails: what follows the first thing that
    /// can be no box is dropped. Boxes below the 32nd level are dropped too; sound files have six.
    static std::shared_ptr<MP4Box> parse(const std::string& type,
                                         std::span<const std::byte> payload);

    bool isContainer() const { return !children.empty() || containers.contains(type); }

    /// The box as file bytes with its header, always in the 32-bit form. Throws OutOfRange
    /// above 4 GiB; a type that is not ASCII, which no file can have given, is a fatal fault.
    Bytes serialize() const;

    /// The box that a path of types leads to, at each level the first child of the type; null where
    /// there is none, or no path.
    std::shared_ptr<MP4Box> first(const std::vector<std::string_view>& path) const;

    /// The children of a type, in order.
    Children all(std::string_view wanted) const;

    void removeAll(const std::set<std::string, std::less<>>& types);

    /// Puts `box` in the place of the first child of a type, or at the end where there is none.
    void replace(std::string_view replaced, std::shared_ptr<MP4Box> box);

    const std::string type;  ///< Four characters, or none where they are not ASCII.
    Bytes payload;           ///< The body of a box that is not taken apart.
    Children children;       ///< In file order.
};

}  // namespace ReelCore
