#pragma once

#include "ReelCore/Reports/ReportRenderer.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"

#include <vector>

namespace TestSupport {

/// A report on disk as a PDF, for the tools that read it.
class OnPaper {
public:
    explicit OnPaper(const ReelCore::Report& report)
        : path_(ReelCore::ReportRenderer::write(report, folder_.path(), {"pdf"}).at(0)) {}

    const ReelCore::URL& path() const { return path_; }
    std::vector<PDFWord> words() const { return pdfWords(path_); }

private:
    TemporaryFolder folder_;
    ReelCore::URL path_;
};

}  // namespace TestSupport
