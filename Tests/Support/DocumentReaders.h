#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace TestSupport {

/// The documents as programs read them that we did not write.

/// The texts of all elements of that name in an XML file, in order (python3, xml.etree).
std::vector<std::string> elementTexts(const ReelCore::URL& xml, const std::string& name);

/// What is wrong with an XML file; empty for a well-formed one (xmllint).
std::string xmlFaults(const ReelCore::URL& xml);

/// The rows of a CSV file; an empty line is an empty row (python3, csv).
std::vector<std::vector<std::string>> readCSV(const ReelCore::URL& csv);

/// The lines of text of a PDF as they stand on its pages from top to bottom, without the blanks
/// around them and without empty lines (pdftotext).
std::vector<std::string> pdfLines(const ReelCore::URL& pdf);

/// A line with each run of blanks as one.
std::string squeezed(const std::string& line);

/// A word on a page, its place in points from the page's left and top.
struct PDFWord {
    std::string text;
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// The words of a PDF (pdftotext).
std::vector<PDFWord> pdfWords(const ReelCore::URL& pdf);

/// The number of a PDF's pages (pdfinfo).
int pdfPages(const ReelCore::URL& pdf);

}  // namespace TestSupport
