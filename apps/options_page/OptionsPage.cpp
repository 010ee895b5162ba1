#include "OptionsPage.h"

#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Catalogue.h"

namespace dspwavedecks::catalogue {

namespace {

std::string_view nameOf(Kind kind) {
    switch (kind) {
        case Kind::Double:
            return "double";
        case Kind::Int:
            return "int";
        case Kind::Logical:
            return "logical";
        case Kind::Text:
        case Kind::UnicodeText:
            return "char or string";
        case Kind::Doubles:
            return "doubles";
        case Kind::Ints:
            return "ints";
        case Kind::Logicals:
            return "logicals";
        case Kind::Texts:
            return "cell or strings";
        case Kind::DoubleOrInt:
            return "double or int";
    }
    return {};
}

std::string_view nameOf(Content content) {
    switch (content) {
        case Content::Number:
            return "number";
        case Content::WholeNumber:
            return "whole number";
        case Content::NumberText:
            return "number as text, may be Inf";
        case Content::NumbersText:
            return "numbers as one text, may be Inf";
        case Content::TrueFalse:
            return "true or false";
        case Content::Word:
            return "word";
        case Content::FreeText:
            return "text";
    }
    return {};
}

/// The names whose sets have something in common with `set`, with commas between them.
template <typename Set>
std::string namesIn(Set set, const std::vector<std::pair<Set, std::string_view>>& names) {
    std::string result;
    for (const auto& [member, name] : names) {
        if (intersects(set, member)) {
            result += result.empty() ? "" : ", ";
            result += name;
        }
    }
    return result;
}

std::string actionsOf(const Option& option) {
    return namesIn(option.when, {{When::Setup, "setup"},
                                 {When::Tune, "tune"},
                                 {When::SizeChange, "size change"},
                                 {When::Rollback, "rollback"}});
}

std::string chainsOf(const Stage& stage) {
    return namesIn(stage.chains, {{Chains::Time, "time"},
                                  {Chains::Spectrum, "spectrum"},
                                  {Chains::Frame, "frame"},
                                  {Chains::Response, "response"},
                                  {Chains::BlockflowTime, "Blockflow time"},
                                  {Chains::BlockflowSpectrum, "Blockflow spectrum"}});
}

void writeWords(std::ostream& page, const Option& option) {
    for (const Word& word : option.words) {
        page << "<br>`" << word.text << '`';
        if (option.kind == Kind::Text) {
            page << " (" << word.value << ')';
        }
        page << (word.meaning.empty() ? "" : " ") << word.meaning;
    }
}

void writeRow(std::ostream& page, const Option& option) {
    page << "| `" << option.name << "` | " << nameOf(option.content) << " | " << nameOf(option.kind) << " | ";
    if (!option.defaultValue.empty()) {
        page << '`' << option.defaultValue << '`';
    }
    page << " | " << option.unit << " | " << actionsOf(option) << " | " << option.meaning;
    writeWords(page, option);
    page << " |\n";
}

void writeSection(std::ostream& page, const Stage& stage) {
    page << "\n## `" << stage.name << "`\n\n`" << stage.className << "` " << stage.meaning
         << ". Chains: " << chainsOf(stage) << ".\n";
    std::vector<const Option*> ofPerson;
    std::vector<const Option*> ofHost;
    for (const Option* option : stage.options) {
        (option->giver == Giver::Person ? ofPerson : ofHost).push_back(option);
    }
    if (ofPerson.empty()) {
        page << "\nNo options.\n";
    } else {
        page << "\n| Option | Value | Arrives as | Default | Unit | Read at | Meaning "
                "|\n|---|---|---|---|---|---|---|\n";
    }
    for (const Option* option : ofPerson) {
        writeRow(page, *option);
    }
    const char* separator = "\nFrom the host: ";
    for (const Option* option : ofHost) {
        page << separator << '`' << option->name << '`' << (option->required ? "" : " (optional)");
        separator = ", ";
    }
    page << (ofHost.empty() ? "" : ".\n");
}

/// One row for each name that the host gives, as the first stage that reads it has it.
void writeHostTable(std::ostream& page) {
    page << "| Option | Arrives as | Meaning |\n|---|---|---|\n";
    std::set<std::string_view> seen;
    for (const Stage& stage : stages) {
        for (const Option* option : stage.options) {
            if (option->giver == Giver::Host && seen.insert(option->name).second) {
                page << "| `" << option->name << "` | " << nameOf(option->kind) << " | " << option->meaning << " |\n";
            }
        }
    }
}

}  // namespace

std::string makeOptionsPage() {
    std::ostringstream page;
    page << "# Options\n\n"
            "Every option of every stage, made from the catalogue in `src/catalogue` by the program "
            "`write_options_page`; `wavedeck options` lists the same.\n\n"
            "*Value* is what a person types after `--set`, *arrives as* the kind of array that carries it: any other "
            "kind is refused. Lists are written `a,b,c`. The number behind a word is the value of its enumeration. The "
            "unit `data` is that of the samples or of the spectrum. An option that is not given keeps its value.\n\n"
            "## What the host gives\n\n";
    writeHostTable(page);
    for (const Stage& stage : stages) {
        writeSection(page, stage);
    }
    return page.str();
}

}  // namespace dspwavedecks::catalogue
