#include "Support/CommaLocale.h"

#include "Support/Tool.h"

#include <clocale>
#include <string_view>

namespace TestSupport {

CommaLocale::CommaLocale() {
    if (!hasTool("localedef")) return;
    const std::string locale = (folder_.path() / "de_DE.UTF-8").native();
    runTool("localedef", {"-i", "de_DE", "-f", "UTF-8", locale});
    isThere_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr &&
               std::string_view(std::localeconv()->decimal_point) == ",";
}

CommaLocale::~CommaLocale() {
    std::setlocale(LC_ALL, "C");
}

}  // namespace TestSupport
