#include "OptionsPage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace dspwavedecks::catalogue {
namespace {

TEST(OptionsPage, CommittedPageIsUpToDate) {
    std::ifstream file(OPTIONS_PAGE);
    std::ostringstream committed;
    committed << file.rdbuf();
    const std::string page = makeOptionsPage();
    if (committed.str() != page) {
        std::istringstream was(committed.str());
        std::istringstream is(page);
        std::string wasLine;
        std::string isLine;
        int line = 0;
        do {
            ++line;
            std::getline(was, wasLine);
            std::getline(is, isLine);
        } while (wasLine == isLine && (was || is));
        FAIL() << "docs/options.md, line " << line << " is\n  " << wasLine << "\nand the catalogue says\n  " << isLine
               << "\nRun: bin/write_options_page > docs/options.md";
    }
}

}  // namespace
}  // namespace dspwavedecks::catalogue
