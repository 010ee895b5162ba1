// Writes docs/options.md to the standard output.

#include <iostream>

#include "OptionsPage.h"

int main() {
    std::cout << dspwavedecks::catalogue::makeOptionsPage();
    return std::cout.good() ? 0 : 1;
}
