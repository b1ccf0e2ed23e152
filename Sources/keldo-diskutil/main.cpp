#include "keldo-diskutil/Erase.h"

#include <cstdlib>
#include <exception>
#include <iostream>

int main(int count, char** arguments) {
    try {
        keldo_diskutil::erase({arguments + 1, arguments + count}, std::cout);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cout << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
