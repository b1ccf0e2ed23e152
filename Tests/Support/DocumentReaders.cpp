#include "Support/DocumentReaders.h"

#include "Support/Tool.h"

#include <regex>
#include <sstream>

namespace TestSupport {

namespace {

/// Texts that python3 printed, each as its length in bytes, a colon and the bytes.
class PrintedTexts {
public:
    explicit PrintedTexts(std::string output) : output_(std::move(output)) {}

    bool atEnd() const { return at_ == output_.size(); }

    bool takeRowEnd() {
        const bool found = output_.at(at_) == '\n';
        at_ += found;
        return found;
    }

    std::string take() {
        const std::size_t colon = output_.find(':', at_);
        const std::size_t length = std::stoul(output_.substr(at_, colon - at_));
        at_ = colon + 1 + length;
        return output_.substr(colon + 1, length);
    }

private:
    std::string output_;
    std::size_t at_ = 0;
};

constexpr const char* printing = R"(
import csv, sys, xml.etree.ElementTree
def show(text):
    data = (text or "").encode()
    sys.stdout.buffer.write(b"%d:%s" % (len(data), data))
)";

std::string python(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"-X", "utf8", "-c", printing + program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return outputOf("python3", all);
}

std::string trimmed(const std::string& line) {
    const auto first = line.find_first_not_of(" \f");
    if (first == line.npos) return {};
    return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::vector<std::string> elementTexts(const ReelCore::URL& xml, const std::string& name) {
    PrintedTexts printed(python(R"(
for element in xml.etree.ElementTree.parse(sys.argv[1]).iter(sys.argv[2]):
    show(element.text)
)",
                                {xml.native(), name}));
    std::vector<std::string> texts;
    while (!printed.atEnd()) texts.push_back(printed.take());
    return texts;
}

std::string xmlFaults(const ReelCore::URL& xml) {
    return runTool("xmllint", {"--noout", xml.native()}).output;
}

std::vector<std::vector<std::string>> readCSV(const ReelCore::URL& csv) {
    PrintedTexts printed(python(R"(
with open(sys.argv[1], newline="", encoding="utf-8") as file:
    for row in csv.reader(file, strict=True):
        for cell in row:
            show(cell)
        sys.stdout.buffer.write(b"\n")
)",
                                {csv.native()}));
    std::vector<std::vector<std::string>> rows;
    while (!printed.atEnd()) {
        rows.emplace_back();
        while (!printed.takeRowEnd()) rows.back().push_back(printed.take());
    }
    return rows;
}

std::vector<std::string> pdfLines(const ReelCore::URL& pdf) {
    std::istringstream output(outputOf("pdftotext", {"-layout", pdf.native(), "-"}));
    std::vector<std::string> lines;
    for (std::string line; std::getline(output, line);) {
        if (!trimmed(line).empty()) lines.push_back(trimmed(line));
    }
    return lines;
}

std::string squeezed(const std::string& line) {
    return std::regex_replace(line, std::regex(" +"), " ");
}

std::vector<PDFWord> pdfWords(const ReelCore::URL& pdf) {
    const std::string boxes = outputOf("pdftotext", {"-bbox", pdf.native(), "-"});
    const std::regex word(
        R"re(<word xMin="(.*?)" yMin="(.*?)" xMax="(.*?)" yMax="(.*?)">(.*?)</word>)re");
    std::vector<PDFWord> words;
    for (std::sregex_iterator one(boxes.begin(), boxes.end(), word), end; one != end; ++one) {
        const auto number = [&](std::size_t group) { return std::stod((*one)[group]); };
        words.push_back({(*one)[5], number(1), number(2), number(3), number(4)});
    }
    return words;
}

int pdfPages(const ReelCore::URL& pdf) {
    const std::string info = outputOf("pdfinfo", {pdf.native()});
    return std::stoi(info.substr(info.find("Pages:") + 6));
}

}  // namespace TestSupport
