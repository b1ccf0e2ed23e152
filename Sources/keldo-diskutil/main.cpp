#include "ReelCore/Platform/Text.h"
#include "keldo-diskutil/Erase.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

/// Paths may hold any bytes, but the caller takes the output as UTF-8 or not at all.
int main(int count, char** arguments) {
    std::ostringstream lines;
    int status = EXIT_SUCCESS;
    try {
        keldo_diskutil::erase({arguments + 1, arguments + count}, lines);
    } catch (const std::exception& error) {
        lines << error.what() << '\n';
        status = EXIT_FAILURE;
    }
    std::cout << ReelCore::Text::wellFormed(lines.str());
    return status;
}
