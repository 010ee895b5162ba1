#include "OptionsPage.h"

#include "Test.h"

namespace {

TEST(OptionsPage, CommittedPageIsUpToDate) {
    std::ifstream committed(OPTIONS_PAGE);
    std::istringstream page(catalogue::makeOptionsPage());
    std::string was;
    std::string is;
    for (int line = 1; std::getline(page, is); ++line) {
        std::getline(committed, was);
        ASSERT_EQ(was, is) << "docs/options.md, line " << line << "; run: bin/write_options_page > docs/options.md";
    }
    EXPECT_FALSE(std::getline(committed, was)) << "docs/options.md goes on behind the page";
}

}  // namespace
