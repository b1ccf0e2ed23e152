#pragma once

#include <string>
#include <vector>

namespace TestSupport {

/// Names that a file may have, with characters that mean something to ffmpeg, to a shell, to
/// templates or to a terminal, in front of an extension.
inline const std::vector<std::string> awkwardNames{
    "-i",          "a:b",        "concat:a|b", "two words", "it's \"so\"",   "[0:a](x){y}",
    "back\\slash", "50%d 100%%", "line\nfeed", "große漢字", "bytes\xFF\xFE", "*?~#&;$HOME"};

}  // namespace TestSupport
