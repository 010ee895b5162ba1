#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ScriptValue.h"
#include "UsageError.h"

namespace program {
namespace {

/// Walks the text for the parser and tells how far it has read.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, const char** reached) : at_(at), reached_(reached) {}

    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        *reached_ = ++at_;
        return *this;
    }
    CountingIterator operator++(int) {
        auto before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

private:
    const char* at_;
    const char** reached_;
};

}  // namespace

/// Builds the values from the parser's events.
class ScriptBuilder : public nlohmann::json_sax<nlohmann::json> {
public:
    ScriptBuilder(const char* begin, const char* const* reached) : counted_(begin), reached_(reached) {}

    ScriptValue take() { return std::move(root_); }

    bool null() override { return put({}); }
    bool boolean(bool value) override { return put(value); }
    bool number_integer(number_integer_t value) override { return put(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return put(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t&) override { return put(value); }
    bool string(string_t& value) override { return put(value); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(ScriptValue::Members{}); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(ScriptValue::List{}); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        auto& members = std::get<ScriptValue::Members>(open_.back()->held_);
        for (const auto& member : members) {
            if (member.first == name) {
                throw UsageError("line " + std::to_string(line()) + ": the member \"" + name + "\" is given twice");
            }
        }
        members.emplace_back(name, ScriptValue{});
        return true;
    }

    bool parse_error(std::size_t, const std::string& token, const nlohmann::json::exception&) override {
        throw UsageError("line " + std::to_string(line()) + ": this is no JSON, at `" + token + '`');
    }

private:
    /// Line of the token in hand. The parser has read its last character, or for a number the one behind it, which
    /// therefore does not count.
    int line() {
        for (; counted_ + 1 < *reached_; ++counted_) {
            line_ += *counted_ == '\n' ? 1 : 0;
        }
        return line_;
    }

    ScriptValue* place(ScriptValue value) {
        if (open_.empty()) {
            root_ = std::move(value);
            return &root_;
        }
        auto& parent = open_.back()->held_;
        if (auto* list = std::get_if<ScriptValue::List>(&parent)) {
            list->push_back(std::move(value));
            return &list->back();
        }
        auto& member = std::get<ScriptValue::Members>(parent).back().second;
        member = std::move(value);
        return &member;
    }

    bool put(ScriptValue::Held held) {
        place(ScriptValue(std::move(held), line()));
        return true;
    }
    bool open(ScriptValue::Held held) {
        open_.push_back(place(ScriptValue(std::move(held), line())));
        return true;
    }
    bool close() {
        open_.pop_back();
        return true;
    }

    ScriptValue root_;
    std::vector<ScriptValue*> open_;  ///< from the root down; an element stays in place while it is open
    const char* counted_;
    const char* const* reached_;
    int line_ = 1;
};

ScriptValue parseScript(const std::string& text) {
    const char* reached = text.data();
    ScriptBuilder builder(text.data(), &reached);
    nlohmann::json::sax_parse(CountingIterator(text.data(), &reached),
                              CountingIterator(text.data() + text.size(), &reached), &builder);
    return builder.take();
}

}  // namespace program
