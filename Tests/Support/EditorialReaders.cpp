#include "Support/EditorialReaders.h"

#include "Support/Tool.h"

#include <utility>

namespace TestSupport {

namespace {

constexpr const char* preamble = R"(
import csv, fractions, sys, urllib.parse, xml.etree.ElementTree
def show(*cells):
    for cell in cells:
        sys.stdout.buffer.write(b"=" + (cell if isinstance(cell, bytes) else cell.encode()) + b"\0")
    sys.stdout.buffer.write(b"\0")
def elements():
    return xml.etree.ElementTree.parse(sys.argv[1]).iter()
)";

/// The rows that a program shows: each cell a "=", its text and a zero, each row a zero behind it.
std::vector<std::vector<std::string>> rowsOf(const std::string& program,
                                             std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-X", "utf8", "-c", preamble + program});
    const std::string output = outputOf("python3", arguments);
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row;
    for (std::size_t at = 0; at < output.size();) {
        const std::string piece = output.c_str() + at;
        if (piece.empty()) {
            rows.push_back(std::exchange(row, {}));
        } else {
            row.push_back(piece.substr(1));
        }
        at += piece.size() + 1;
    }
    return rows;
}

std::vector<std::string> textsOf(const std::string& program,
                                 const std::vector<std::string>& arguments) {
    std::vector<std::string> texts;
    for (const auto& row : rowsOf(program, arguments)) texts.push_back(row.at(0));
    return texts;
}

}  // namespace

std::vector<std::string> attributes(const ReelCore::URL& xml, const std::string& element,
                                    const std::string& attribute) {
    return textsOf(R"(
for element in elements():
    if element.tag == sys.argv[2] and sys.argv[3] in element.attrib:
        show(element.attrib[sys.argv[3]])
)",
                   {xml.native(), element, attribute});
}

std::vector<std::string> mediaPaths(const ReelCore::URL& fcpxml) {
    return textsOf(R"(
for element in elements():
    if element.tag == "media-rep":
        location = element.attrib["src"]
        parts = urllib.parse.urlparse(location)
        plain = parts._replace(path="").geturl() in ("file:", "file://")
        path = urllib.parse.unquote_to_bytes(parts.path)
        show(path if plain and path.startswith(b"/") else "not here: " + location)
)",
                   {fcpxml.native()});
}

std::vector<std::string> timesInFrames(const ReelCore::URL& fcpxml) {
    return textsOf(R"(
def seconds(text):
    assert text.endswith("s"), text
    return fractions.Fraction(text[:-1])
frame = None
for element in elements():
    if element.tag == "format":
        frame = seconds(element.attrib["frameDuration"])
    for name in ("tcStart", "offset", "start", "duration"):
        if name in element.attrib:
            show("%s.%s %s" % (element.tag, name, seconds(element.attrib[name]) / frame))
)",
                   {fcpxml.native()});
}

std::vector<std::vector<std::string>> readTabbed(const ReelCore::URL& table) {
    return rowsOf(R"(
with open(sys.argv[1], newline="", encoding="utf-8") as file:
    for row in csv.reader(file, delimiter="\t", quoting=csv.QUOTE_NONE, strict=True):
        show(*row)
)",
                  {table.native()});
}

}  // namespace TestSupport
